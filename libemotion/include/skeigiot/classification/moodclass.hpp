#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/classification/moodscore.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::classification
{

/// One candidate answer of a classification, with the score that rates it. Copies share the score.
class SKEIGIOT_API MoodClass
{
public:
  /// Makes a class rated by `moodScore`, which must outlive it.
  MoodClass(const std::string& name, std::int32_t value, const MoodScore& moodScore);

  /// Rates `features` and keeps the result in `score`.
  ///
  /// \throws what the score throws; `score` is unchanged then.
  void calculateScore(const std::vector<float>& features);

  std::string name;            ///< label of the class
  std::int32_t value;          ///< the number that the class stands for
  const MoodScore* moodScore;  ///< not owned
  float score = 0.f;           ///< the latest result of calculateScore(); no meaning before the first
};

/// Compares the scores only.
SKEIGIOT_API bool operator>(const MoodClass& left, const MoodClass& right);

}  // namespace KV::classification
