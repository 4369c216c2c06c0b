#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/classification/moodclassifiertype.hpp>

#include <vector>

namespace KV::classification
{

/// The best score wins, if it leads by more than a margin.
class SKEIGIOT_API ArgmaxClassifierType final : public MoodClassifierType
{
public:
  /// Makes a rule by which the best score must exceed the second best by more than `threshold`.
  explicit ArgmaxClassifierType(float threshold) : _threshold(threshold) {}

  /// Sorts `classes` into descending order of their scores, and returns the first.
  ///
  /// The order of equal scores is unspecified. With a threshold of 0 a tie for the first place has no winner.
  ///
  /// \pre There are at least two classes.
  /// \return the winner; the reference is valid until `classes` changes.
  /// \throws std::runtime_error "unknown state: no clear winner found" if the lead is not strictly greater than the
  ///   threshold, or is NaN; `classes` stays sorted.
  /// \par Thread safety
  ///   Holds no mutable state, and may be shared; one list must not be classified by two threads at once.
  MoodClass& classify(const MoodClassifier& classifier, std::vector<MoodClass>& classes) const override;

private:
  float _threshold;
};

}  // namespace KV::classification
