#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace marvento::fuzz {

// Ends the run with the property that broke; libFuzzer then keeps the input as a crash file.
[[noreturn]] void Fail(const char* property, const QString& detail);
inline void Check(bool holds, const char* property, const QString& detail = {}) {
  if (!holds) Fail(property, detail);
}

// The input as the program would see typed or stored text: UTF-8, bad sequences replaced.
QString Text(const std::uint8_t* data, std::size_t size);

// Takes numbers off the front of an input and leaves the rest as text.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
  std::uint8_t byte();
  double number();  // the next eight bytes as they lie, NaN and infinities included
  float single();
  QString rest() const { return Text(m_data, m_size); }
  // The rest as serial data reaches the program: one character per byte.
  QString restLatin1() const;

 private:
  // The next sizeof(T) bytes as they lie; fewer at the end of the input, the rest zero.
  template <typename T>
  T take();

  const std::uint8_t* m_data;
  std::size_t m_size;
};

// German number formats, as the program's tests assume.
void UseGermanLocale();

// Points the settings store at a fresh temporary folder for this process.
void UsePrivateSettings();

}  // namespace marvento::fuzz
