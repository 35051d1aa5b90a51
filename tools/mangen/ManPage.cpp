#include "ManPage.h"

#include <cstdint>
#include <optional>
#include <regex>
#include <vector>

namespace marvento::mangen {

namespace {

// Decodes one UTF-8 sequence at `i`; advances `i` past it. Nothing on malformed input.
std::optional<std::uint32_t> NextCodePoint(std::string_view s, std::size_t& i) {
  const auto lead = static_cast<unsigned char>(s[i]);
  int extra = 0;
  std::uint32_t cp = 0;
  if (lead < 0x80) {
    ++i;
    return lead;
  } else if (lead >= 0xC2 && lead < 0xE0) {
    extra = 1;
    cp = lead & 0x1F;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    extra = 2;
    cp = lead & 0x0F;
  } else if (lead >= 0xF0 && lead < 0xF5) {
    extra = 3;
    cp = lead & 0x07;
  } else {
    return std::nullopt;
  }
  if (i + extra >= s.size()) return std::nullopt;
  for (int k = 1; k <= extra; ++k) {
    const auto c = static_cast<unsigned char>(s[i + k]);
    if ((c & 0xC0) != 0x80) return std::nullopt;
    cp = (cp << 6) | (c & 0x3F);
  }
  // Overlong forms, surrogates and values past Unicode's end are no characters.
  static constexpr std::uint32_t kMin[] = {0, 0x80, 0x800, 0x10000};
  if (cp < kMin[extra] || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return std::nullopt;
  i += extra + 1;
  return cp;
}

// Escapes without protecting the start of the line.
bool EscapeInto(std::string_view text, std::string& out, std::string& error) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    const auto cp = NextCodePoint(text, i);
    if (!cp) {
      error = "no UTF-8 text";
      return false;
    }
    switch (*cp) {
      case '\\': out += "\\e"; break;
      case '-': out += "\\-"; break;
      // groff may print these as typographic signs, which a command copied from the
      // terminal must not contain.
      case '\'': out += "\\(aq"; break;
      case '`': out += "\\(ga"; break;
      case '~': out += "\\(ti"; break;
      case '^': out += "\\(ha"; break;
      default:
        if (*cp < 0x20 || *cp == 0x7F) {
          error = "control character (a tab?) in the text";
          return false;
        }
        out += text.substr(start, i - start);
    }
  }
  return true;
}

// A line that starts with a control character would be read as a request.
std::string Protect(std::string line) {
  if (!line.empty() && (line[0] == '.' || line[0] == '\'')) line.insert(0, "\\&");
  return line;
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\r')) s.remove_suffix(1);
  return s;
}

std::vector<std::string_view> Lines(std::string_view source) {
  std::vector<std::string_view> lines;
  while (!source.empty()) {
    const auto nl = source.find('\n');
    lines.push_back(source.substr(0, nl));
    if (nl == std::string_view::npos) break;
    source.remove_prefix(nl + 1);
  }
  return lines;
}

}  // namespace

Result EscapeText(std::string_view text) {
  Result r;
  if (EscapeInto(text, r.text, r.error)) {
    r.text = Protect(std::move(r.text));
  } else {
    r.text.clear();
  }
  return r;
}

Result FormatInline(std::string_view text) {
  Result r;
  enum class Font { Roman, Bold, Italic } font = Font::Roman;
  std::size_t start = 0;
  auto flush = [&](std::size_t end) {
    return EscapeInto(text.substr(start, end - start), r.text, r.error);
  };
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    const bool bold = text.compare(i, 2, "**") == 0;
    const bool italic = text.compare(i, 2, "__") == 0;
    if (!bold && !italic) continue;
    if (!flush(i)) break;
    const Font mark = bold ? Font::Bold : Font::Italic;
    if (font == Font::Roman) {
      r.text += bold ? "\\fB" : "\\fI";
      font = mark;
    } else if (font == mark) {
      r.text += "\\fR";
      font = Font::Roman;
    } else {
      r.error = "bold and italic do not nest";
      break;
    }
    start = i + 2;
    i += 1;
  }
  if (r.error.empty() && flush(text.size()) && font != Font::Roman)
    r.error = font == Font::Bold ? "** not closed" : "__ not closed";
  if (!r.error.empty()) {
    r.text.clear();
    return r;
  }
  r.text = Protect(std::move(r.text));
  return r;
}

Result RenderPage(std::string_view source, std::string_view lang, std::string_view version) {
  Result r;
  std::string name, section, date, manual;
  std::string body;
  bool inLang = false, langFound = false, anyLang = false;
  bool pendingPara = false, inLiteral = false, inItem = false;
  std::size_t number = 0;

  auto fail = [&](const std::string& what) {
    r.error = number ? "line " + std::to_string(number) + ": " + what : what;
    r.text.clear();
    return r;
  };
  auto closeLiteral = [&] {
    if (inLiteral) body += ".fi\n.RE\n";
    inLiteral = false;
  };

  const std::regex pageLine(R"(@page ([a-z0-9][a-z0-9-]*) ([1-9]))");
  const std::regex dateLine(R"(@date (\d{4}-\d{2}-\d{2}))");
  const std::regex langLine(R"(@lang ([a-z]{2}) (\S.*))");
  for (std::string_view raw : Lines(source)) {
    ++number;
    const std::string_view line = Trim(raw);
    if (line.starts_with("#")) continue;
    std::match_results<std::string_view::const_iterator> m;
    if (line.starts_with("@")) {
      if (std::regex_match(line.begin(), line.end(), m, pageLine)) {
        name = m[1];
        section = m[2];
      } else if (std::regex_match(line.begin(), line.end(), m, dateLine)) {
        date = m[1];
      } else if (std::regex_match(line.begin(), line.end(), m, langLine)) {
        closeLiteral();
        if (m[1].str() == lang && langFound) return fail("second @lang " + std::string(lang));
        inLang = m[1].str() == lang;
        anyLang = true;
        if (inLang) {
          langFound = true;
          manual = m[2];
        }
      } else {
        return fail("unknown or malformed directive: " + std::string(line));
      }
      continue;
    }
    if (!inLang) {
      if (!anyLang && !line.empty()) return fail("text before the first @lang");
      continue;
    }

    if (line.empty()) {
      closeLiteral();
      pendingPara = true;
      inItem = false;
      continue;
    }
    if (line.starts_with("|")) {
      if (!inLiteral) {
        if (pendingPara && !inItem) body += ".PP\n";
        body += ".RS 4\n.nf\n";
        inLiteral = true;
        pendingPara = false;
      }
      // The line as written, indentation included.
      std::string_view shown = raw.substr(raw.find('|') + 1);
      if (shown.starts_with(" ")) shown.remove_prefix(1);
      while (!shown.empty() && (shown.back() == ' ' || shown.back() == '\r'))
        shown.remove_suffix(1);
      Result e = EscapeText(shown);
      if (!e.error.empty()) return fail(e.error);
      body += e.text.empty() ? "\\&" : e.text;
      body += '\n';
      continue;
    }
    closeLiteral();

    const auto formatted = [&](std::string_view text, std::string& out) {
      Result f = FormatInline(Trim(text));
      if (!f.error.empty()) return f.error;
      if (f.text.empty()) return std::string("empty text");
      out += f.text;
      out += '\n';
      return std::string();
    };
    std::string error;
    if (line.starts_with("= ") || line.starts_with("== ")) {
      const bool sub = line.starts_with("== ");
      body += sub ? ".SS\n" : ".SH\n";
      error = formatted(line.substr(sub ? 3 : 2), body);
      pendingPara = false;
      inItem = false;
    } else if (line.starts_with(": ")) {
      body += ".TP\n";
      error = formatted(line.substr(2), body);
      pendingPara = false;
      inItem = true;
    } else if (line.starts_with("* ")) {
      body += ".IP \\(bu 2\n";
      error = formatted(line.substr(2), body);
      pendingPara = false;
      inItem = true;
    } else {
      if (pendingPara) body += ".PP\n";
      pendingPara = false;
      const bool lineBreak = line.ends_with("\\");
      error = formatted(lineBreak ? line.substr(0, line.size() - 1) : line, body);
      if (lineBreak) body += ".br\n";
    }
    if (!error.empty()) return fail(error);
  }
  closeLiteral();

  number = 0;
  if (name.empty()) return fail("no @page NAME SECTION");
  if (date.empty()) return fail("no @date YYYY-MM-DD");
  if (!langFound) return fail("no @lang " + std::string(lang));
  if (version.find('"') != std::string_view::npos || manual.find('"') != std::string::npos)
    return fail("a quotation mark in the page's header");
  std::string upper;
  for (char c : name) upper += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  const Result title = EscapeText(upper), foot = EscapeText(version), head = EscapeText(manual);
  if (!head.error.empty() || !foot.error.empty()) return fail("header: " + head.error + foot.error);
  // man-db hands the page to groff through preconv, which reads this line.
  r.text = ".\\\" -*- coding: UTF-8 -*-\n";
  r.text += ".\\\" Generated from " + name + ".man while building; edit that file.\n";
  r.text += ".TH " + title.text + " " + section + " " + EscapeText(date).text + " \"" + foot.text +
            "\" \"" + head.text + "\"\n";
  // German compounds broken by English hyphenation patterns read badly; no page breaks words.
  r.text += ".nh\n";
  r.text += body;
  return r;
}

}  // namespace marvento::mangen
