#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace KV::recordings
{

/// The person behind the name of a speaker: one of the two, or nobody, such as the voice of the robot.
struct SpeakerPerson
{
  std::optional<std::int32_t> number;
  std::string name;

  bool isNobody() const { return !number && name.empty(); }
};

/// Which speaker is which person; "" is text without a speaker. Empty: not said.
using SpeakerTable = std::map<std::string, SpeakerPerson>;

}  // namespace KV::recordings
