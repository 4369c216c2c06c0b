#include <skeigiot/verdict.hpp>

namespace KV
{

void Verdict::add(const PersonState& state)
{
  const ValueConfidence<float> positive = state.personEmotion(Positive);
  const ValueConfidence<float> negative = state.personEmotion(Negative);
  ++_count;
  _weightedValenceSum += (positive.value - negative.value) * positive.confidence;
  _confidenceSum += positive.confidence;
}

std::string Verdict::word() const
{
  const float meanConfidence = _confidenceSum / static_cast<float>(_count);
  if (PersonState::getBinaryBoundaryConfidence() > meanConfidence)
    return "unknown";
  const float meanValence = _weightedValenceSum / _confidenceSum;
  if (meanValence > PersonState::getBinaryBoundaryPositive())
    return "positive";
  if (meanValence < PersonState::getBinaryBoundaryNegative())
    return "negative";
  return "neutral";
}

}  // namespace KV
