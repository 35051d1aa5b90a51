#pragma once

#include <QString>

#include <ostream>

// Readable QString values in failure messages. Internal linkage, so that other test files
// may print QString their own way.
[[maybe_unused]] static void PrintTo(const QString& text, std::ostream* os) {
  *os << '"' << text.toStdString() << '"';
}
