#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace marvento {

// The two figures of the table and the unit they are in.
struct HeightFigures {
  // Weighted mean of all entries ("kurzfristiges Mittel").
  float mean = 0;
  // Height with the greatest weight, the lower one on a tie ("langfristiges Mittel").
  float mode = 0;
  // Unit of the last sample that had enough satellites, as the receiver sent it.
  QString unit;
};

// Weights of GPS antenna heights, one entry per tenth of the height unit (index = height x 10),
// filled from GGA sentences with a filter against jumps. Heights are taken in the unit of the
// sentence and never converted.
class HeightTable {
 public:
  // Bounds of a new table.
  static constexpr std::int32_t kStartLower = -500;
  static constexpr std::int32_t kStartUpper = 500;
  // The table never reaches beyond -500.0 and 10000.0: no antenna stands there, and a garbled
  // height must not make the table swallow memory. At most about 420 kB.
  static constexpr std::int32_t kLowestIndex = -5000;
  static constexpr std::int32_t kHighestIndex = 100000;
  // PendingHeight10 after ten accepted samples: no refused index waiting.
  static constexpr std::int32_t kNoPending = -10000;

  enum class Outcome {
    TooFewSatellites,  // 3 or fewer (or no count at all): nothing changes
    OutOfRange,        // height outside the limits or no usable number: nothing changes
    Accepted,          // weight added
    Refused,           // a jump of 36.0 or more from the reference
  };

  HeightTable();

  // One sample: alt and sats are the height and satellite fields of a GGA sentence (a point as
  // decimal sign), unit its unit field. Needs at least 4 satellites; weight = sqrt(sats / 4).
  Outcome sample(QStringView alt, const QString& unit, QStringView sats);

  // Weighted mean and mode over the whole table, summed in ascending index order as floats.
  HeightFigures figures() const;

  std::int32_t lowerBound() const { return m_lower; }
  std::int32_t upperBound() const {
    return m_lower + static_cast<std::int32_t>(m_samples.size()) - 1;
  }
  // Accumulated weight at an index; 0 outside the bounds.
  float weight(std::int32_t index) const;

  std::int32_t LastHeight10() const { return m_lastHeight10; }
  std::int32_t PendingHeight10() const { return m_pendingHeight10; }
  std::int16_t HeightCount() const { return m_heightCount; }
  const QString& HeightUnit() const { return m_heightUnit; }

 private:
  void add(std::int32_t index, float weight);

  std::vector<float> m_samples;  // HeightSamples, element 0 at index m_lower
  std::int32_t m_lower = kStartLower;
  std::int32_t m_lastHeight10 = 0;  // 0: no reference yet
  std::int32_t m_pendingHeight10 = 0;
  std::int16_t m_heightCount = 0;
  QString m_heightUnit;
};

}  // namespace marvento
