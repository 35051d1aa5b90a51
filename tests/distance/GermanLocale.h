#pragma once

#include <gtest/gtest.h>
#include <QLocale>

namespace marvento {

// The texts of the program are checked as a German machine writes them.
class GermanLocaleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_saved = QLocale();
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }
  void TearDown() override { QLocale::setDefault(m_saved); }

 private:
  QLocale m_saved;
};

}  // namespace marvento
