#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personstate.hpp>

#include <cstddef>
#include <string>

namespace KV
{

/// Sums up a person's states into one word: how a scope went.
///
/// Takes constant memory, so that a scope may run for hours. KVEmotionRecorder::stopRecording() judges by it.
///
///     mean confidence = sum(c) / n        mean valence = sum(v c) / sum(c)
///
/// over the n states' valences v and confidences c, in single precision and in the order added.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API Verdict
{
public:
  /// Adds the state as it is now.
  void add(const PersonState& state);

  /// Returns "unknown" if the mean confidence is below the confidence boundary of PersonState; otherwise "positive" if
  /// the mean valence is above the positive boundary, "negative" if it is below the negative one, else "neutral".
  ///
  /// Deliberate: without any state the means are NaN and the word is "neutral".
  std::string word() const;

private:
  std::size_t _count = 0;
  float _confidenceSum = 0.f;
  float _weightedValenceSum = 0.f;
};

}  // namespace KV
