#include "height/HeightTable.h"

#include "platform/Numbers.h"

#include <cmath>
#include <cstdlib>

namespace marvento {

namespace {

// A sample this far from the reference (in tenths) or farther is a jump.
constexpr std::int32_t kJump = 360;
// Accepted samples after which a pending refused index is forgotten.
constexpr std::int16_t kPendingLife = 10;

}  // namespace

HeightTable::HeightTable()
    : m_samples(static_cast<std::size_t>(kStartUpper - kStartLower + 1), 0.0f) {}

HeightTable::Outcome HeightTable::sample(QStringView alt, const QString& unit, QStringView sats) {
  // A count that does not fit 16 bits is garbage and counts as no satellites.
  const std::int16_t count = ToInt16(Val(sats)).value_or(0);
  if (count <= 3) return Outcome::TooFewSatellites;

  const std::optional<std::int32_t> rounded = ToInt32(Val(alt) * 10);
  if (!rounded || *rounded < kLowestIndex || *rounded > kHighestIndex) {
    // Dropped before the filter sees it: a garbled height must neither become the reference
    // nor wait as pending, or it would hold off the real samples that follow.
    return Outcome::OutOfRange;
  }
  const std::int32_t index = *rounded;

  if (m_lastHeight10 == 0) m_lastHeight10 = index;
  const std::int32_t distance = std::abs(m_lastHeight10 - index);  // both within the limits

  Outcome outcome;
  if (distance < kJump) {
    add(index, static_cast<float>(std::sqrt(count / 4.0)));
    m_lastHeight10 = index;
    ++m_heightCount;
    if (m_heightCount >= kPendingLife) {
      m_heightCount = 0;
      m_pendingHeight10 = kNoPending;
    }
    outcome = Outcome::Accepted;
  } else {
    // The same jump twice in a row from a good fix is a real move, not noise.
    if (index == m_pendingHeight10 && count > 4) m_lastHeight10 = index;
    m_pendingHeight10 = index;
    outcome = Outcome::Refused;
  }
  m_heightUnit = unit;
  return outcome;
}

void HeightTable::add(std::int32_t index, float weight) {
  if (index < m_lower) {
    m_samples.insert(m_samples.begin(), static_cast<std::size_t>(m_lower - index), 0.0f);
    m_lower = index;
  } else if (index > upperBound()) {
    m_samples.resize(static_cast<std::size_t>(index - m_lower + 1), 0.0f);
  }
  float& entry = m_samples[static_cast<std::size_t>(index - m_lower)];
  entry = entry + weight;
}

float HeightTable::weight(std::int32_t index) const {
  if (index < m_lower || index > upperBound()) return 0;
  return m_samples[static_cast<std::size_t>(index - m_lower)];
}

HeightFigures HeightTable::figures() const {
  float sumWeight = 0;
  float sumProduct = 0;
  float maxWeight = 0;
  float modeHeight = 0;
  for (std::size_t k = 0; k < m_samples.size(); ++k) {
    const float w = m_samples[k];
    const double height = (m_lower + static_cast<std::int32_t>(k)) / 10.0;
    if (w > maxWeight) {
      maxWeight = w;
      modeHeight = static_cast<float>(height);
    }
    if (w > 0) {
      sumWeight = sumWeight + w;
      // The product is taken in double and only the sum is kept as a float.
      sumProduct = static_cast<float>(sumProduct + height * w);
    }
  }
  HeightFigures result;
  if (sumProduct != 0 && sumWeight != 0) result.mean = sumProduct / sumWeight;
  result.mode = modeHeight;
  result.unit = m_heightUnit;
  return result;
}

}  // namespace marvento
