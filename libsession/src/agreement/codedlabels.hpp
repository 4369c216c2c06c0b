#pragma once

#include "agreement/course.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace KV::session
{

/// The labels as courses: what each coder says of each person.
struct CodedLabels
{
  using OfPersons = std::map<std::int32_t, Course>;
  using OfCoders = std::map<std::string, OfPersons>;

  std::map<std::size_t, OfCoders> classes;  ///< by index in labelQuantities()
  std::map<std::string, OfCoders> values;   ///< by "attention" and "valence"
  std::vector<std::string> warnings;        ///< on labels that were left out
};

/// Makes courses of labels about these persons of the recording.
CodedLabels codedLabels(const std::vector<recordings::Labels>& labels, const std::set<std::int32_t>& persons,
                        const AgreementOptions& options);

}  // namespace KV::session
