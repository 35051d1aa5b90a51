#include "height/HeightTable.h"

#include <gtest/gtest.h>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace marvento {
namespace {

struct Entry {
  std::int32_t index;
  float weight;
};

constexpr float w4 = 1.0f;
constexpr float w6 = 1.2247449f;  // sqrt(6/4)
constexpr float w8 = 1.4142135f;  // sqrt(8/4)

// Samples as "height unit satellites", one after another.
HeightTable run(const QString& samples) {
  HeightTable table;
  for (const QString& sample : samples.split(u',')) {
    const QStringList f = sample.trimmed().split(u' ');
    table.sample(f.value(0), f.value(1), f.value(2));
  }
  return table;
}

TEST(HeightTableTest, SampleSequences) {
  // A jump, then nine accepted samples in all.
  const QString nineAccepted =
      QStringLiteral("545.4 M 4, 600.0 M 8") + QStringLiteral(", 545.4 M 4").repeated(8);
  const struct {
    const char* name;
    QString samples;
    std::vector<Entry> entries;  // every index with weight, nothing else may have any
    struct {
      std::int32_t last;
      std::int32_t pending;
      std::int16_t count;
      const char* unit;
    } state;
  } cases[] = {
      {"35.9 away still passes",
       "545.4 M 8, 581.3 M 8",
       {{5454, w8}, {5813, w8}},
       {5813, 0, 2, "M"}},
      {"36.0 away is a jump", "545.4 M 8, 581.4 M 8", {{5454, w8}}, {5454, 5814, 1, "M"}},
      {"same jump twice with 6 satellites moves the reference",
       "545.4 M 6, 590.0 M 6, 590.0 M 6, 590.1 M 6",
       {{5454, w6}, {5901, w6}},
       {5901, 5900, 2, "M"}},
      {"second jump with only 4 satellites leaves the reference",
       "545.4 M 6, 590.0 M 6, 590.0 M 4, 590.1 M 6",
       {{5454, w6}},
       {5454, 5901, 1, "M"}},
      {"a jump pending through accepted samples still moves the reference",
       "545.4 M 4, 600.0 M 8, 545.5 M 4, 600.0 M 5",
       {{5454, w4}, {5455, w4}},
       {6000, 6000, 2, "M"}},
      // PendingHeight10 starts at 0, so a repeated jump to 0.0 counts as the second of a pair.
      {"a jump to 0.0 clears the reference",
       "100.0 M 8, 0.0 M 8, 700.0 M 8",
       {{1000, w8}, {7000, w8}},
       {7000, 0, 2, "M"}},
      {"a refused sample still sets the unit",
       "545.4 M 8, 600.0 F 8",
       {{5454, w8}},
       {5454, 6000, 1, "F"}},
      {"ten accepted samples forget the pending jump",
       nineAccepted + QStringLiteral(", 545.4 M 4"),
       {{5454, 10 * w4}},
       {5454, HeightTable::kNoPending, 0, "M"}},
      {"nine accepted samples keep it", nineAccepted, {{5454, 9 * w4}}, {5454, 6000, 9, "M"}},
      {"garbage satellite counts store nothing",
       "545.4 M 40000, 545.4 M, 545.4 M 1E999, 545.4 M x",
       {},
       {0, 0, 0, ""}},
      {"a garbled height twice neither becomes pending nor moves the reference",
       "545.4 M 8, 54540 F 8, 54540 F 8, 545.5 M 8",
       {{5454, w8}, {5455, w8}},
       {5455, 0, 2, "M"}},
  };

  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const HeightTable table = run(c.samples);
    for (const Entry& e : c.entries) EXPECT_FLOAT_EQ(table.weight(e.index), e.weight) << e.index;
    int withWeight = 0;
    for (std::int32_t i = table.lowerBound(); i <= table.upperBound(); ++i) {
      if (table.weight(i) != 0) ++withWeight;
    }
    EXPECT_EQ(withWeight, static_cast<int>(c.entries.size()));
    EXPECT_EQ(table.LastHeight10(), c.state.last);
    EXPECT_EQ(table.PendingHeight10(), c.state.pending);
    EXPECT_EQ(table.HeightCount(), c.state.count);
    EXPECT_EQ(table.HeightUnit(), QString(c.state.unit));
  }
}

TEST(HeightTableTest, OutcomesAndBounds) {
  const struct {
    const char* alt;
    const char* sats;
    HeightTable::Outcome outcome;
    std::int32_t lower;
    std::int32_t upper;
  } cases[] = {
      {"545.4", "3", HeightTable::Outcome::TooFewSatellites, -500, 500},
      {"-500.04", "4", HeightTable::Outcome::Accepted, -5000, 500},
      {"10000.0", "4", HeightTable::Outcome::Accepted, -500, 100000},
      {"-500.1", "8", HeightTable::Outcome::OutOfRange, -500, 500},
      {"3E9", "4", HeightTable::Outcome::OutOfRange, -500, 500},  // too big for 32 bits
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.alt);
    HeightTable table;
    EXPECT_EQ(table.sample(QString(c.alt), "M", QString(c.sats)), c.outcome);
    EXPECT_EQ(table.lowerBound(), c.lower);
    EXPECT_EQ(table.upperBound(), c.upper);
  }
}

}  // namespace
}  // namespace marvento
