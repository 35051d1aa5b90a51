#pragma once

#include <QByteArray>
#include <QIODevice>

#include <functional>

namespace marvento {

// How much a log reader takes from its file at a time.
inline constexpr qint64 kReadChunk = 1 << 16;

// Reads a text file line by line in fixed-size pieces, so that neither a huge file nor one
// huge line is ever held whole. A line longer than the cap keeps only its head; its bytes
// (head, rest and line end) then go to the pass-through sink, if one is set, in file order.
class LineReader {
 public:
  struct Line {
    QByteArray text;    // without the line end; at most the cap
    QByteArray eol;     // "\r\n", "\n" or empty at the end of the file
    qint64 number = 0;  // counted from 1
    bool cut = false;   // longer than the cap; passed through whole
  };

  explicit LineReader(QIODevice& in, qsizetype cap = 1 << 16);
  void setPassThrough(std::function<void(QByteArrayView)> sink) { m_sink = std::move(sink); }

  // False at the end of the file or on a read error (see failed()).
  bool next(Line& line);
  bool failed() const { return m_failed; }
  qint64 position() const { return m_consumed; }

 private:
  bool fill();

  QIODevice& m_in;
  qsizetype m_cap;
  QByteArray m_buf;
  qsizetype m_pos = 0;
  qint64 m_consumed = 0;
  qint64 m_number = 0;
  bool m_eof = false;
  bool m_failed = false;
  std::function<void(QByteArrayView)> m_sink;
};

}  // namespace marvento
