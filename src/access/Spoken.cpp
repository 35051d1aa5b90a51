#include "access/Spoken.h"

#include <QRegularExpression>

namespace marvento {

namespace {

QString spokenUnits(QString text) {
  static const QRegularExpression degree(QStringLiteral("\\s*°"));
  static const QRegularExpression km(QStringLiteral("\\bkm\\b"));
  text.replace(degree, QStringLiteral(" Grad"));
  text.replace(km, QStringLiteral("Kilometer"));
  return text.simplified();
}

}  // namespace

QString SpokenResult(const QString& distance, const QString& bearing) {
  const QString d = distance.trimmed();
  const QString b = bearing.trimmed();
  if (d.isEmpty() && b.isEmpty()) return {};
  QStringList parts;
  if (!d.isEmpty()) parts << QStringLiteral("Entfernung ") + spokenUnits(d);
  if (!b.isEmpty()) parts << QStringLiteral("Richtung ") + spokenUnits(b);
  return parts.join(QStringLiteral(", "));
}

QString SpokenPanel(const QString& text, const QString& description) {
  const QString shown = spokenUnits(text);
  if (shown.isEmpty()) return {};
  const QString context = description.simplified();
  if (shown.front().isLetter() || context.isEmpty()) return shown;
  return context + u' ' + shown;
}

QString SpokenSequence(const QStringList& parts) {
  QStringList kept;
  for (const QString& part : parts) {
    QString p = part.simplified();
    if (p.isEmpty()) continue;
    if (!p.endsWith(u'.') && !p.endsWith(u'!') && !p.endsWith(u'?')) p += u'.';
    kept << p;
  }
  return kept.join(u' ');
}

}  // namespace marvento
