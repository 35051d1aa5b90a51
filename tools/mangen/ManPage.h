#pragma once

#include <string>
#include <string_view>

namespace marvento::mangen {

// The manual pages are written in a small line format, one file per program holding every
// language, and turned into man(7) text while building:
//
//   # a comment                     @page NAME SECTION      @date YYYY-MM-DD
//   @lang de Marvento-Handbuch      starts the German half; the rest is the manual's name
//   = HEADING                       a section        == Heading   a subsection
//   : term                          a tagged paragraph; the lines below, up to a blank
//                                   line, describe the term
//   * text                          a bullet item
//   | text                          a line shown as it stands (example, command)
//   blank line                      a new paragraph
//   text ending in a backslash      the next line starts on a line of its own
//   **bold** and __italic__ within text; any other line is running text.
//
// The result is UTF-8. Hyphens become minus signs, and quotes, tilde and caret stay the
// ASCII signs, so that options, names and paths can be copied from the terminal.

struct Result {
  std::string text;
  std::string error;  // "line N: ..." when the source cannot be turned into a page
};

// One language of a page. `version` goes into the page's footer, e.g. "Marvento 4.4.0".
Result RenderPage(std::string_view source, std::string_view lang, std::string_view version);

// Text for a man(7) line: escapes, and a line that would start with a control character is
// protected. Fails on bytes that are no UTF-8.
Result EscapeText(std::string_view text);

// EscapeText plus **bold** and __italic__.
Result FormatInline(std::string_view text);

}  // namespace marvento::mangen
