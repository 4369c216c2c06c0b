#pragma once

#include "agreement/course.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// The labels as courses: one for each coder and person.
struct CodedLabels
{
  using OfPersons = std::map<std::int32_t, Course>;
  using OfCoders = std::map<std::string, OfPersons>;

  std::map<std::size_t, OfCoders> classes;  ///< by index in labelQuantities()
  std::map<std::string, OfCoders> values;   ///< by "attention" and "valence"
  /// Labels without a state, which cannot be compared: by person, then by coder and tier, in the order of the files.
  std::map<std::int32_t, std::map<std::pair<std::string, std::string>, std::vector<recordings::LabelSpan>>> others;
  std::string withoutState;           ///< their number in words; empty if all have a state
  std::vector<std::string> warnings;  ///< on labels that were left out for other reasons
};

/// Makes courses of labels about these persons of the recording.
CodedLabels codedLabels(const std::vector<recordings::Labels>& labels, const std::set<std::int32_t>& persons,
                        const AgreementOptions& options);

}  // namespace KV::session
