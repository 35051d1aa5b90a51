#include "contest/LineReader.h"

namespace marvento {

LineReader::LineReader(QIODevice& in, qsizetype cap) : m_in(in), m_cap(cap) {}

bool LineReader::fill() {
  if (m_eof) return false;
  if (m_pos > 0) {
    m_buf.remove(0, m_pos);
    m_pos = 0;
  }
  const qsizetype had = m_buf.size();
  m_buf.resize(had + kReadChunk);
  const qint64 got = m_in.read(m_buf.data() + had, kReadChunk);
  if (got < 0) m_failed = true;
  m_buf.resize(had + std::max<qint64>(got, 0));
  if (got <= 0) m_eof = true;
  return got > 0;
}

bool LineReader::next(Line& line) {
  line = Line();
  line.number = ++m_number;
  bool any = false;
  for (;;) {
    const qsizetype nl = m_buf.indexOf('\n', m_pos);
    if (nl >= 0) {
      qsizetype end = nl;
      if (end > m_pos && m_buf[end - 1] == '\r') --end;
      const QByteArrayView piece(m_buf.constData() + m_pos, end - m_pos);
      if (line.cut) {
        if (m_sink) m_sink(QByteArrayView(m_buf.constData() + m_pos, nl + 1 - m_pos));
      } else if (line.text.size() + piece.size() > m_cap) {
        line.cut = true;
        if (m_sink) {
          m_sink(line.text);
          m_sink(QByteArrayView(m_buf.constData() + m_pos, nl + 1 - m_pos));
        }
        line.text.append(piece.first(m_cap - line.text.size()));
      } else {
        line.text.append(piece);
      }
      // A CR at the end of a piece already handed over stays in the text: rare, and kept.
      line.eol = QByteArray(m_buf.constData() + end, nl + 1 - end);
      m_consumed += nl + 1 - m_pos;
      m_pos = nl + 1;
      return true;
    }
    // No line end in the buffer: hand over all but a last CR, which may start a CR LF.
    qsizetype take = m_buf.size() - m_pos;
    if (take > 0 && !m_eof && m_buf.endsWith('\r')) --take;
    if (take > 0) {
      any = true;
      const QByteArrayView piece(m_buf.constData() + m_pos, take);
      if (line.cut) {
        if (m_sink) m_sink(piece);
      } else if (line.text.size() + take > m_cap) {
        line.cut = true;
        if (m_sink) {
          m_sink(line.text);
          m_sink(piece);
        }
        line.text.append(piece.first(m_cap - line.text.size()));
      } else {
        line.text.append(piece);
      }
      m_consumed += take;
      m_pos += take;
    }
    if (!fill()) {
      if (m_pos < m_buf.size()) continue;  // the held-back CR at the very end
      if (!any) {
        --m_number;
        return false;
      }
      return true;
    }
  }
}

}  // namespace marvento
