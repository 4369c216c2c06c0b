#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/studyresults.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Which numbers of a study are compared, and between which groups.
struct SKEIGIOT_API StudyQuestion
{
  std::string quantity = "valence";       ///< a column of the summaries with numbers, such as "attention" or "seen"
  std::string scope = "whole recording";  ///< the numbers are those of this scope; not used if `by` is "scope"
  std::string by = "condition";           ///< "condition", "scope", or another placeholder of the study
};

/// Persons of one condition and role, and the mean of their values.
struct SKEIGIOT_API StudyGroup
{
  /// One person of the group.
  struct Person
  {
    std::string participant;  ///< identifier; without one, the session and the number of the person in it
    double value = 0.;        ///< mean of the person's summaries in this group, each with the same weight
    std::size_t rows = 0;     ///< number of those summaries
  };

  std::string value;            ///< the condition, the scope, or the value of the placeholder
  std::string role;             ///< of the persons; may be empty
  std::vector<Person> persons;  ///< in the order of `participant`
  double mean = 0.;             ///< of the values of the persons
  /// Ends of the 95 % interval of the mean; nothing for a single person.
  ///
  /// The persons are resampled 1000 times with replacement, by a generator with a fixed seed. The ends are percentiles
  /// of the means of the resamples (B. Efron, R. J. Tibshirani, An Introduction to the Bootstrap, 1993, chapter 13).
  boost::optional<std::pair<double, double>> interval;
};

/// The answer to a question.
struct SKEIGIOT_API StudyComparison
{
  StudyQuestion question;          ///< as it was asked
  std::vector<StudyGroup> groups;  ///< in the order of value and role
};

/// Compares groups of persons. Only sessions that are complete count, and only summaries that have the quantity.
///
/// There is no test of significance.
///
/// \throws recordings::Error if a value of the quantity is a text or not finite.
/// \throws std::invalid_argument if the summaries have no such quantity, if the sessions have no such placeholder, or
/// if
///   no complete session has the quantity in that scope.
SKEIGIOT_API StudyComparison compareGroups(const StudyResults& results, const StudyQuestion& question);

}  // namespace KV::session
