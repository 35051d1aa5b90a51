#include "app/FieldFit.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QLocale>
#include <QStyle>
#include <QStyleOptionFrame>

#include <algorithm>

namespace marvento {

namespace {

// The character of the set that takes the most room in this font.
QChar widest(const QFontMetrics& metrics, QStringView set) {
  QChar best = set.front();
  for (QChar c : set) {
    if (metrics.horizontalAdvance(c) > metrics.horizontalAdvance(best)) best = c;
  }
  return best;
}

// QLineEdit keeps this many pixels free on either side of its text.
constexpr int kLineEditMargin = 2;

}  // namespace

int WidestCoordinateText(const QFontMetrics& metrics) {
  const QString d(widest(metrics, u"0123456789"));
  const QString point = QLocale().decimalPoint();
  auto digits = [&](int n) { return d.repeated(n); };
  const QString texts[] = {
      // Decimal form: up to 15 significant digits, written out in full below 1E-4.
      QStringLiteral("-") + digits(3) + point + digits(12),
      QStringLiteral("-0") + point + digits(19),
      // Degrees, minutes and seconds: Str() gives the blank in front of degrees and minutes;
      // the seconds have at most four decimals.
      QStringLiteral("- ") + digits(3) + QStringLiteral("° ") + digits(2) + QStringLiteral("' ") +
          digits(2) + point + digits(4) + QStringLiteral("\""),
  };
  int width = 0;
  for (const QString& text : texts) width = std::max(width, metrics.horizontalAdvance(text));
  return width;
}

int WidestLocatorText(const QFontMetrics& metrics) {
  const QChar c = widest(metrics, u"ABCDEFGHIJKLMNOPQRSTUVWX0123456789");
  return metrics.horizontalAdvance(QString(10, c));
}

int FieldWidthFor(const QLineEdit& field, int textWidth) {
  QStyleOptionFrame option;
  option.initFrom(&field);
  option.lineWidth = field.hasFrame()
                         ? field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &field)
                         : 0;
  option.state |= QStyle::State_Sunken;
  // What the style takes for the frame, as the field's current size shows it.
  const QRect contents =
      field.style()->subElementRect(QStyle::SE_LineEditContents, &option, &field);
  const int frame = field.width() - contents.width();
  const QMargins margins = field.textMargins();
  const int cursor = field.style()->pixelMetric(QStyle::PM_TextCursorWidth, &option, &field);
  // QLineEdit scrolls unless the text, one pixel and the cursor fit between its margins.
  return textWidth + 1 + cursor + 2 * kLineEditMargin + margins.left() + margins.right() + frame;
}

void ShowTextFromStart(QLineEdit* field) {
  // setText() clears the modified flag before it reports the change; typing sets it.
  QObject::connect(field, &QLineEdit::textChanged, field, [field] {
    if (!field->isModified()) field->setCursorPosition(0);
  });
}

}  // namespace marvento
