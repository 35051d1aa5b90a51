#include "rover/Spelling.h"

#include <QRegularExpression>
#include <QStringList>

namespace marvento {

QString SpellLocator(const QString& locator, Spelling spelling) {
  static const char* const kIcao[] = {
      "Alfa",    "Bravo", "Charlie", "Delta",  "Echo",     "Foxtrot", "Golf",   "Hotel",  "India",
      "Juliett", "Kilo",  "Lima",    "Mike",   "November", "Oscar",   "Papa",   "Quebec", "Romeo",
      "Sierra",  "Tango", "Uniform", "Victor", "Whiskey",  "X-Ray",   "Yankee", "Zulu"};
  static const char* const kDigits[] = {"null", "eins",  "zwei",   "drei", "vier",
                                        "fünf", "sechs", "sieben", "acht", "neun"};
  QStringList words;
  for (const QChar c : locator.toUpper()) {
    const char16_t u = c.unicode();
    if (u >= u'A' && u <= u'Z') {
      words << (spelling == Spelling::Icao ? QString::fromLatin1(kIcao[u - u'A']) : QString(c));
    } else if (u >= u'0' && u <= u'9') {
      words << QString::fromUtf8(kDigits[u - u'0']);
    }
  }
  return words.join(u' ');
}

QString ForGermanVoice(const QString& text) {
  // Heard with espeak-ng's German voice: these came out as German words or letters.
  static const struct {
    const char* word;
    const char* spoken;
  } kSaid[] = {{"Juliett", "Dschuliett"}, {"Mike", "Maik"},    {"Quebec", "Kebeck"},
               {"Whiskey", "Wiski"},      {"X-Ray", "Ex-Rei"}, {"Yankee", "Jänki"}};
  QString out = text;
  for (const auto& s : kSaid) {
    out.replace(
        QRegularExpression(QStringLiteral("\\b%1\\b")
                               .arg(QRegularExpression::escape(QString::fromLatin1(s.word)))),
        QString::fromUtf8(s.spoken));
  }
  return out;
}

}  // namespace marvento
