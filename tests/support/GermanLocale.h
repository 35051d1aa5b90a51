#pragma once

// The program's texts are checked as a German machine writes them: every test of the
// GoogleTest binary runs with the German locale as default.

#include <gtest/gtest.h>
#include <QLocale>

namespace marvento::test {

struct GermanLocale : ::testing::Environment {
  void SetUp() override { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
};

inline ::testing::Environment* const kGermanLocale =
    ::testing::AddGlobalTestEnvironment(new GermanLocale);

}  // namespace marvento::test
