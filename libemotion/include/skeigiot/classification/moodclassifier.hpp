#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/classification/moodclass.hpp>
#include <skeigiot/classification/moodclassifiertype.hpp>

#include <vector>

namespace KV::classification
{

/// Picks the winner of a list of scored classes by a rule.
class SKEIGIOT_API MoodClassifier
{
public:
  /// Makes a classifier that decides by `type`, which must outlive it.
  explicit MoodClassifier(const MoodClassifierType& type);
  virtual ~MoodClassifier();

  /// Returns what the rule returns for this classifier and these classes; throws what it throws.
  MoodClass& classify(std::vector<MoodClass>& classes) const;

private:
  const MoodClassifierType* _type;  // not owned
};

}  // namespace KV::classification
