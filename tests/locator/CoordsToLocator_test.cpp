#include "locator/CoordsToLocator.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(CoordsToLocator, MatchesTheWorkedPositionsAndCellEdges) {
  const struct {
    double Lg, Br;
    const char* six;
    const char* ten;
  } cases[] = {
      {13.4, 52.52, "JO62QM", "JO62QM84AT"},
      {0, 0, "JJ00AA", "JJ00AA00AA"},
      // Truncation toward zero carries the 6-character form across both zero lines.
      {-0.004, -0.004, "JJ00AA", "II99XX99MA"},
      {0.084, 0, "JJ00AA", "JJ00BA00BA"},
      // -163.67 * 100 is -16366.999999999998 and must truncate to -16366, not round.
      {-163.67, 0.5, "AJ80EM", "AJ80DM90OA"},
      {179.9999999, 89.9999999, "RR99XX", "RR99XX99XX"},
      {-179.9999999, -89.9999999, "AA00AA", "AA00AA00AA"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Lg << " / " << c.Br);
    EXPECT_EQ(CoordsToLocator6(c.Lg, c.Br), QLatin1String(c.six));
    EXPECT_EQ(CoordsToLocator10(c.Lg, c.Br), QLatin1String(c.ten));
  }
}

}  // namespace
}  // namespace marvento
