#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// A channel that is a reading, or a part of one.
struct XdfChannel
{
  std::string reading;               // such as "smile" or "gaze.yaw"
  std::string label;                 // of the channel; empty: by its index
  std::optional<std::size_t> index;  // of the channel, from 0
  double factor = 1.;                // by which a number is multiplied
  double offset = 0.;                // added to a number after that
};

/// The meaning of a stream of a recording of the Lab Streaming Layer.
struct XdfStreamMapping
{
  std::string stream;                // name, type or source_id
  std::string person;                // number or name; empty: person 0
  std::optional<bool> areScopes;     // whether its texts are scopes; without it, those of a stream of markers
  std::vector<XdfChannel> channels;  // that are readings
};

using XdfMapping = std::vector<XdfStreamMapping>;

}  // namespace KV::recordings
