#include "height/HeightEvaluate.h"

#include "platform/MsgBoxRecorder.h"

#include "support/GermanLocale.h"

#include <QStringList>

namespace marvento {
namespace {

// Samples as "height unit satellites", one after another, the way the poll hands them over.
HeightTable fed(const QString& samples) {
  HeightTable table;
  for (const QString& sample : samples.split(u',')) {
    const QStringList f = sample.trimmed().split(u' ');
    QString unit = f.value(1);
    HeightEvaluate(table, f.value(0), unit, f.value(2), false);
  }
  return table;
}

// The short-term figure is the mean weighted by satellites, the long-term one the height of
// greatest weight, the lower one on a tie.
TEST(HeightEvaluate, MessageText) {
  const struct {
    const char* name;
    const char* samples;
    const char* mean;
    const char* mode;
  } cases[] = {
      {"before any sample", "", "0,0 ", "0,0 "},
      {"the example of the manual", "545.4 M 8, 545.4 M 8, 545.4 M 8, 545.4 M 8, 545.5 M 8",
       "545,42 m", "545,4 m"},
      {"mean across zero", "-1.0 M 4, 1.0 M 4, 2.0 M 4", "0,67 m", "-1,0 m"},
      {"more satellites weigh more; unit in lower case", "100.0 F 4, 101.0 F 16", "100,67 f",
       "101,0 f"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(HeightMessage(fed(QString::fromLatin1(c.samples)).figures()),
              QStringLiteral("Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: ") +
                  QString::fromUtf8(c.mean) + QStringLiteral("\nlangfristiges Mittel: ") +
                  QString::fromUtf8(c.mode));
  }
}

// Sampling is silent; the evaluation shows the table's figures, hands back its unit, and
// neither height nor satellites go into the table.
TEST(HeightEvaluate, EvaluationShowsTheFiguresAndChangesNothing) {
  MsgBoxRecorder rec;
  HeightTable table = fed(QStringLiteral("545.4 M 8, 545.6 M 8"));
  EXPECT_EQ(rec.count(), 0);
  const HeightTable before = table;
  QString unit = QStringLiteral("F");
  HeightEvaluate(table, QStringLiteral("545.4"), unit, QStringLiteral("12"), true);
  EXPECT_EQ(unit, QStringLiteral("M"));
  ASSERT_EQ(rec.count(), 1);
  EXPECT_EQ(rec.last().prompt, HeightMessage(before.figures()));
  EXPECT_EQ(rec.last().title, QStringLiteral("GPS - Höhe"));
  EXPECT_EQ(rec.last().style, vbInformation);
  EXPECT_EQ(rec.beeps(), 0);
  EXPECT_EQ(table.weight(5454), before.weight(5454));
  EXPECT_EQ(table.HeightCount(), before.HeightCount());
}

}  // namespace
}  // namespace marvento
