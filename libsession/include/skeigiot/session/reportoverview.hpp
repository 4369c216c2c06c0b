#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/personsummary.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KV::session
{

/// The entry of one report in the index of several.
struct SKEIGIOT_API ReportOverview
{
  static constexpr std::size_t stretches = 60;  ///< into which a small picture divides the recording

  /// The part of the entry about one person.
  struct Person
  {
    std::int32_t number = 0;       ///< of the person
    std::string verdict;           ///< on the whole recording, or the first scope
    PersonSummary summary;         ///< of the whole recording
    std::vector<float> valence;    ///< mean in each stretch; NaN where it is not known
    std::vector<float> attention;  ///< mean in each stretch; NaN where it is not known
  };

  Duration length{0};           ///< of the recording
  std::vector<Person> persons;  ///< by their numbers
};

}  // namespace KV::session
