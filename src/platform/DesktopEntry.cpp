#include "platform/DesktopEntry.h"

#include <QFile>
#include <QTextStream>

#include <utility>

namespace marvento {

KeyFile ReadKeyFile(const QString& path) {
  KeyFile result;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return result;
  QTextStream in(&file);
  in.setEncoding(QStringConverter::Utf8);
  QString group;
  while (!in.atEnd()) {
    const QString line = in.readLine().trimmed();
    if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) continue;
    if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
      group = line.mid(1, line.size() - 2);
      result[group];  // an empty group still exists
      continue;
    }
    const qsizetype eq = line.indexOf(QLatin1Char('='));
    if (eq <= 0 || group.isEmpty()) continue;
    result[group].append({line.left(eq).trimmed(), line.mid(eq + 1).trimmed()});
  }
  return result;
}

QString KeyValue(const KeyFileGroup& group, const QString& key) {
  for (const auto& [k, v] : group) {
    if (k == key) return v;
  }
  return {};
}

QString UnescapeValue(const QString& value) {
  QString out;
  out.reserve(value.size());
  for (qsizetype i = 0; i < value.size(); ++i) {
    const QChar c = value.at(i);
    if (c != QLatin1Char('\\') || i + 1 == value.size()) {
      out += c;
      continue;
    }
    const QChar next = value.at(++i);
    switch (next.unicode()) {
      case 's': out += QLatin1Char(' '); break;
      case 'n': out += QLatin1Char('\n'); break;
      case 't': out += QLatin1Char('\t'); break;
      case 'r': out += QLatin1Char('\r'); break;
      case '\\': out += QLatin1Char('\\'); break;
      default:
        out += c;
        out += next;
        break;
    }
  }
  return out;
}

QStringList SplitList(const QString& value) {
  QStringList items;
  for (const QString& item : value.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    const QString trimmed = item.trimmed();
    if (!trimmed.isEmpty()) items.append(trimmed);
  }
  return items;
}

std::optional<DesktopEntry> ReadDesktopEntry(const QString& path) {
  const KeyFile file = ReadKeyFile(path);
  const auto group = file.constFind(QStringLiteral("Desktop Entry"));
  if (group == file.constEnd()) return std::nullopt;
  DesktopEntry entry;
  entry.path = path;
  entry.exec = UnescapeValue(KeyValue(*group, QStringLiteral("Exec")));
  entry.tryExec = UnescapeValue(KeyValue(*group, QStringLiteral("TryExec")));
  entry.mimeTypes = SplitList(KeyValue(*group, QStringLiteral("MimeType")));
  entry.application = KeyValue(*group, QStringLiteral("Type")) == QLatin1String("Application");
  entry.hidden = KeyValue(*group, QStringLiteral("Hidden")) == QLatin1String("true");
  return entry;
}

QStringList ExecCommand::argumentsFor(const QString& file) const {
  QStringList args = arguments;
  args.insert(qBound<qsizetype>(0, fileIndex, args.size()), file);
  return args;
}

namespace {

struct Token {
  QString text;
  bool quoted = false;
};

std::optional<QList<Token>> tokenize(const QString& exec) {
  QList<Token> tokens;
  Token current;
  bool inToken = false;
  bool inQuotes = false;
  for (qsizetype i = 0; i < exec.size(); ++i) {
    const QChar c = exec.at(i);
    if (inQuotes) {
      if (c == QLatin1Char('"')) {
        inQuotes = false;
      } else if (c == QLatin1Char('\\') && i + 1 < exec.size()) {
        current.text += exec.at(++i);
      } else {
        current.text += c;
      }
      continue;
    }
    if (c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n')) {
      if (inToken) tokens.append(std::exchange(current, Token{}));
      inToken = false;
      continue;
    }
    inToken = true;
    if (c == QLatin1Char('"')) {
      inQuotes = true;
      current.quoted = true;
    } else {
      current.text += c;
    }
  }
  if (inQuotes) return std::nullopt;
  if (inToken) tokens.append(current);
  return tokens;
}

bool isFileCode(QChar code) {
  return code == QLatin1Char('f') || code == QLatin1Char('F') || code == QLatin1Char('u') ||
         code == QLatin1Char('U');
}

// Field codes inside an unquoted argument: %% becomes %, every other code goes.
QString dropFieldCodes(const QString& text) {
  QString out;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text.at(i) != QLatin1Char('%') || i + 1 == text.size()) {
      out += text.at(i);
      continue;
    }
    if (text.at(++i) == QLatin1Char('%')) out += QLatin1Char('%');
  }
  return out;
}

}  // namespace

std::optional<ExecCommand> ParseExec(const QString& exec) {
  const auto tokens = tokenize(exec);
  if (!tokens || tokens->isEmpty()) return std::nullopt;
  ExecCommand command;
  bool filePlaced = false;
  for (qsizetype i = 0; i < tokens->size(); ++i) {
    const Token& token = tokens->at(i);
    if (!token.quoted && token.text.size() == 2 && token.text.at(0) == QLatin1Char('%') &&
        token.text.at(1) != QLatin1Char('%')) {
      // A standalone field code. Only the first file code marks a place; a second one
      // would open the file twice.
      if (i > 0 && isFileCode(token.text.at(1)) && !filePlaced) {
        command.fileIndex = command.arguments.size();
        filePlaced = true;
      }
      continue;
    }
    const QString text = token.quoted ? token.text : dropFieldCodes(token.text);
    if (i == 0) {
      command.program = text;
    } else if (token.quoted || !text.isEmpty()) {
      command.arguments.append(text);
    }
  }
  if (command.program.isEmpty()) return std::nullopt;
  if (!filePlaced) command.fileIndex = command.arguments.size();
  return command;
}

}  // namespace marvento
