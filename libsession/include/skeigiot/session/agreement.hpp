#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementcomparison.hpp>
#include <skeigiot/session/agreementoptions.hpp>
#include <skeigiot/session/personcourse.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// How the estimate and the coders of a recording agree.
struct SKEIGIOT_API Agreement
{
  std::vector<AgreementComparison> comparisons;  ///< by quantity, sides, then all persons before each of them
  std::vector<std::string> warnings;             ///< on labels that were left out
  std::uint64_t seed = 0;                        ///< see AgreementOptions
  std::size_t resamples = 0;                     ///< see AgreementOptions
};

/// Compares labels with the courses of persons, and the labels of each two coders with each other.
///
/// Both sides are compared at all times of the estimate: an update holds until the next one of the person, for a second
/// at most. So each moment counts as long as it lasts, and the rate of updates does not matter.
///
/// \throws std::invalid_argument if no label can be compared, or coders are too many; it says why.
SKEIGIOT_API Agreement compareWithLabels(const std::map<std::int32_t, PersonCourse>& courses,
                                         const std::vector<recordings::Labels>& labels,
                                         const AgreementOptions& options);

/// Writes it as a JSON object; what is not defined is null.
SKEIGIOT_API void writeAsJson(std::ostream& stream, const Agreement& agreement);

/// Writes it as CSV, with a measure, a pair of classes, or a reason in each row.
SKEIGIOT_API void writeAsCsv(std::ostream& stream, const Agreement& agreement);

}  // namespace KV::session
