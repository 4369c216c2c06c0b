#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/classification/moodclass.hpp>

#include <vector>

namespace KV::classification
{

class MoodClassifier;

/// The rule by which a MoodClassifier decides. Never deleted through this base.
class SKEIGIOT_API MoodClassifierType
{
public:
  /// Returns the winner, a reference into `classes`, which may be reordered.
  virtual MoodClass& classify(const MoodClassifier& classifier, std::vector<MoodClass>& classes) const = 0;

protected:
  ~MoodClassifierType() = default;
};

}  // namespace KV::classification
