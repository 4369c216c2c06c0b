#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/classification/coefficient.hpp>
#include <skeigiot/classification/moodscore.hpp>

#include <vector>

namespace KV::classification
{

/// A logistic regression score.
class SKEIGIOT_API LogregMoodScore final : public MoodScore
{
public:
  /// Makes a score with `n` weights of 1.
  ///
  /// \throws std::length_error if `n` is negative.
  LogregMoodScore(int n, float intercept);
  /// Makes a score with a copy of these weights and this intercept.
  explicit LogregMoodScore(const Coefficient& coefficient);

  /// Replaces weights and intercept.
  ///
  /// \par Thread safety
  ///   Not synchronised: must not run while calculateScore() does.
  void setWeights(const std::vector<float>& weights, float intercept);

  /// Returns 1 / (exp(-(sum of weight x feature + intercept)) + 1), in single precision; the class is not read.
  ///
  /// In the open interval (0, 1) for finite input of moderate size. The sum is in float, in index order.
  ///
  /// \throws std::runtime_error "Z vector size does not match the feature size" if there is not one feature per weight.
  float calculateScore(const MoodClass& moodClass, const std::vector<float>& features) const override;

  /// \name Built-in sets for the five valence features: smile, calm, joy, anger, sorrow
  /// Built on the first call (thread-safe), destroyed at the end of the process.
  /// @{
  static const Coefficient& COEFFICIENT_POS();  ///< of the class "positive"
  static const Coefficient& COEFFICIENT_NEU();  ///< of the class "neutral"
  static const Coefficient& COEFFICIENT_NEG();  ///< of the class "negative"
  /// @}

private:
  std::vector<float> _weights;
  float _intercept;
};

}  // namespace KV::classification
