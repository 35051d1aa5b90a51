#include "height/HeightEvaluate.h"

#include "platform/MsgBoxRecorder.h"

#include "support/GermanLocale.h"

#include <vector>

namespace marvento {
namespace {

// Samples go in the way the poll hands them over.
void feed(HeightTable& table, const std::vector<std::vector<const char*>>& samples) {
  for (const auto& s : samples) {
    QString unit = s[1];
    HeightEvaluate(table, s[0], unit, s[2], false);
  }
}

TEST(HeightEvaluate, MessageText) {
  const struct {
    const char* name;
    std::vector<std::vector<const char*>> samples;
    const char* expected;
  } cases[] = {
      {"before any sample",
       {},
       "Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: 0,0 \n"
       "langfristiges Mittel: 0,0 "},
      {"the example of the manual",
       {{"545.4", "M", "8"},
        {"545.4", "M", "8"},
        {"545.4", "M", "8"},
        {"545.4", "M", "8"},
        {"545.5", "M", "8"}},
       "Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: 545,42 m\n"
       "langfristiges Mittel: 545,4 m"},
      {"mean across zero",
       {{"-1.0", "M", "4"}, {"1.0", "M", "4"}, {"2.0", "M", "4"}},
       "Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: 0,67 m\n"
       "langfristiges Mittel: -1,0 m"},
      {"more satellites weigh more; unit in lower case",
       {{"100.0", "F", "4"}, {"101.0", "F", "16"}},
       "Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: 100,67 f\n"
       "langfristiges Mittel: 101,0 f"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    HeightTable table;
    feed(table, c.samples);
    EXPECT_EQ(HeightMessage(table.figures()), QString::fromUtf8(c.expected));
  }
}

TEST(HeightEvaluate, EvaluationShowsTheFiguresAndChangesNothing) {
  MsgBoxRecorder rec;
  HeightTable table;
  feed(table, {{"545.4", "M", "8"}, {"545.6", "M", "8"}, {"600.0", "M", "8"}});
  EXPECT_EQ(rec.count(), 0);  // sampling is silent

  // Alt and Sats are not read; Unit receives the table's unit.
  QString unit = QStringLiteral("F");
  HeightEvaluate(table, QStringLiteral("545.4"), unit, QStringLiteral("12"), true);
  HeightEvaluate(table, QStringLiteral("545.4"), unit, QStringLiteral("12"), true);
  EXPECT_EQ(unit, QStringLiteral("M"));
  ASSERT_EQ(rec.count(), 2);
  EXPECT_EQ(rec.last().title, QStringLiteral("GPS - Höhe"));
  EXPECT_EQ(rec.last().style, vbInformation);
  EXPECT_EQ(rec.beeps(), 0);
  EXPECT_EQ(rec.entries()[0].call.prompt, rec.last().prompt);
  EXPECT_EQ(rec.last().prompt,
            QStringLiteral("Die vorläufig ermittelte Höhe beträgt: \n\nkurzfristiges Mittel: "
                           "545,5 m\nlangfristiges Mittel: 545,4 m"));
  EXPECT_FLOAT_EQ(table.weight(5454), 1.4142135f);
  EXPECT_EQ(table.LastHeight10(), 5456);
  EXPECT_EQ(table.PendingHeight10(), 6000);
  EXPECT_EQ(table.HeightCount(), 2);
}

}  // namespace
}  // namespace marvento
