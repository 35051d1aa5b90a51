#include "FuzzSupport.h"

#include <QDir>
#include <QLocale>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace marvento::fuzz {

void Fail(const char* property, const QString& detail) {
  std::fprintf(stderr, "property broken: %s\n  %s\n", property, qPrintable(detail));
  std::abort();
}

QString Text(const std::uint8_t* data, std::size_t size) {
  return QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

std::uint8_t Input::byte() {
  if (m_size == 0) return 0;
  const std::uint8_t b = *m_data;
  ++m_data;
  --m_size;
  return b;
}

template <typename T>
T Input::take() {
  T value{};
  const std::size_t n = m_size < sizeof value ? m_size : sizeof value;
  std::memcpy(&value, m_data, n);
  m_data += n;
  m_size -= n;
  return value;
}

double Input::number() {
  return take<double>();
}

float Input::single() {
  return take<float>();
}

QString Input::restLatin1() const {
  return QString::fromLatin1(reinterpret_cast<const char*>(m_data), static_cast<qsizetype>(m_size));
}

void UseGermanLocale() {
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void UsePrivateSettings() {
  char folder[] = "/tmp/marvento-fuzz-XXXXXX";
  if (!mkdtemp(folder)) {
    std::perror("mkdtemp");
    std::abort();
  }
  setenv("XDG_CONFIG_HOME", folder, 1);
  // Removed at a normal end only: after a crash the store the failing input left stays.
  static const QString path = QString::fromLocal8Bit(folder);
  std::atexit([] { QDir(path).removeRecursively(); });
}

}  // namespace marvento::fuzz
