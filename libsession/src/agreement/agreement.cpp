#include <skeigiot/session/agreement.hpp>

#include "agreement/classmeasures.hpp"
#include "agreement/codedlabels.hpp"
#include "agreement/sidecomparison.hpp"
#include "agreement/trackmeasures.hpp"

#include <skeigiot/recordings/signallimits.hpp>
#include <skeigiot/session/wording.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <functional>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace KV::session
{

namespace
{

const char* const estimateName = "estimate";

/// Compares all sides of one quantity.
class QuantityComparison
{
public:
  using Compare = std::function<std::vector<AgreementComparison>(const Side& first, const Side& second)>;

  /// `estimates` are those of all persons of the recording.
  QuantityComparison(Side estimate, const CodedLabels::OfCoders& coders, int between)
    : _estimate(std::move(estimate)), _coders(coders), _between(between)
  {}

  void run(const Compare& compare, std::vector<AgreementComparison>& comparisons) const
  {
    const auto add = [&](const Side& first, const Side& second) {
      std::vector<AgreementComparison> found = compare(first, second);
      comparisons.insert(comparisons.end(), std::make_move_iterator(found.begin()),
                         std::make_move_iterator(found.end()));
    };
    for (const auto& [name, persons] : _coders)
      add(_estimate, _sideOf(name, persons));
    for (auto first = _coders.begin(); first != _coders.end(); ++first)
      for (auto second = std::next(first); second != _coders.end(); ++second)
        add(_atUpdates(first->first, first->second), _sideOf(second->first, second->second));
  }

private:
  Side _sideOf(const std::string& name, const CodedLabels::OfPersons& persons) const
  {
    return {name, persons, _between};
  }

  /// A coder at the times of the estimate, so that coders are compared over the same times as coder and estimate.
  Side _atUpdates(const std::string& name, const CodedLabels::OfPersons& persons) const
  {
    Side side{name, {}, _between};
    for (const auto& [person, course] : persons)
      side.courses[person] = within(course, _estimate.courses.at(person), _between);
    return side;
  }

  Side _estimate;
  const CodedLabels::OfCoders& _coders;
  int _between;
};

/// The side of the estimate; `estimated` makes a course of one quantity of a person's estimates.
template <typename Quantity, typename Estimated>
Side estimatedSide(const std::map<std::int32_t, PersonCourse>& courses, const Quantity& quantity, Estimated estimated)
{
  Side side{estimateName, {}, NoLabel};
  for (const auto& [person, course] : courses)
    side.courses[person] = estimated(course, quantity);
  return side;
}

std::string joined(const std::vector<std::string>& texts)
{
  std::string all;
  for (const std::string& text : texts)
    all += (all.empty() ? "" : "; ") + text;
  return all;
}

/// Each coder is compared with each.
void refuseTooMany(const std::string& quantity, const CodedLabels::OfCoders& coders)
{
  if (coders.size() > recordings::limits::mostCoders)
    throw std::invalid_argument("the labels of " + quantity + " are from " + counted(coders.size(), "coder") +
                                ", expected " + std::to_string(recordings::limits::mostCoders) + " at most");
}

}  // namespace

Agreement compareWithLabels(const std::map<std::int32_t, PersonCourse>& courses,
                            const std::vector<recordings::Labels>& labels, const AgreementOptions& options)
{
  std::set<std::int32_t> persons;
  for (const auto& [person, course] : courses)
    persons.insert(person);
  if (persons.empty())
    throw std::invalid_argument("no label can be compared: nobody was seen in the recording");
  const CodedLabels coded = codedLabels(labels, persons, options);

  Agreement agreement;
  agreement.seed = options.seed;
  agreement.resamples = options.resamples;
  agreement.warnings = coded.warnings;
  if (!coded.withoutState.empty())
    agreement.warnings.insert(agreement.warnings.begin(), coded.withoutState);
  for (const auto& [quantity, coders] : coded.classes)
  {
    const LabelQuantity& found = labelQuantities().at(quantity);
    refuseTooMany(found.name, coders);
    const boost::optional<std::size_t> unlabelled = options.mapping.unlabelled(quantity);
    QuantityComparison(estimatedSide(courses, quantity, estimatedClasses), coders,
                       unlabelled ? static_cast<int>(*unlabelled) : int{NoLabel})
        .run(
            [&found = found, &options](const Side& first, const Side& second) {
              return SideComparison<ClassMeasures>(ClassMeasures(found.classes), found.name, first, second, options)
                  .run();
            },
            agreement.comparisons);
  }
  for (const auto& [quantity, coders] : coded.values)
  {
    refuseTooMany(quantity, coders);
    QuantityComparison(estimatedSide(courses, quantity, estimatedValues), coders, NoLabel)
        .run(
            [&quantity = quantity, &options](const Side& first, const Side& second) {
              return SideComparison<TrackMeasures>(TrackMeasures(), quantity, first, second, options).run();
            },
            agreement.comparisons);
  }
  if (agreement.comparisons.empty())
    throw std::invalid_argument("no label can be compared: " + (agreement.warnings.empty()
                                                                    ? std::string("there is none")
                                                                    : joined(agreement.warnings)));
  return agreement;
}

}  // namespace KV::session
