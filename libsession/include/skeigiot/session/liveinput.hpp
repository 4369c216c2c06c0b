#pragma once

#include <skeigiot/session/duration.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>

namespace KV::session
{

/// The state of the input of a live session.
struct LiveInput
{
  std::string name;               ///< of the recording or the bus; empty: lines of standard input
  std::string unit = "lines";     ///< of what comes in: "lines", "steps" or "messages"
  double speed = 1.;              ///< how many times as fast as it was recorded a recording is played
  std::size_t lines = 0;          ///< lines, steps or messages that came in
  std::size_t refused = 0;        ///< how many of them were refused
  std::string lastError;          ///< what was wrong with the last of them
  double rate = 0.;               ///< lines, steps or messages in the last second
  boost::optional<double> delay;  ///< [s] from the time of the readings to their arrival, mean of the last second; none
                                  ///< if no line had a time of its own
  bool ended = false;             ///< nothing comes in any more
};

}  // namespace KV::session
