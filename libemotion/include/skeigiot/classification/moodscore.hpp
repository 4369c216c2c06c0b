#pragma once

#include <skeigiot/api.hpp>

#include <vector>

namespace KV::classification
{

class MoodClass;

/// Rates how well a feature vector fits a mood class. Never deleted through this base.
class SKEIGIOT_API MoodScore
{
public:
  /// Returns the score of `features` for `moodClass`.
  ///
  /// \throws std::runtime_error "Z vector size does not match the feature size" if there is not one feature per weight.
  /// \par Thread safety
  ///   Reads only: safe from several threads on one score.
  virtual float calculateScore(const MoodClass& moodClass, const std::vector<float>& features) const = 0;

protected:
  ~MoodScore() = default;
};

}  // namespace KV::classification
