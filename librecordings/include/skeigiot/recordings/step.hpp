#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/recordings/scopestart.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::recordings
{

/// One step of a recording. Every part is optional; they take effect in the order of the members.
struct SKEIGIOT_API Step
{
  ko::SystemClock::time_point time;  ///< what the clock shows during the step; never before that of the step before
  bool isDated = true;  ///< false: nobody knows on which day it was, the times count from a made-up start. The first
                        ///< step says it for the whole recording

  std::vector<ScopeStart> scopeStarts;  ///< scopes that begin with this step

  int movements = 0;                        ///< movements detected in the room
  boost::optional<float> ambianceActivity;  ///< activity of the room, if it was measured

  boost::optional<std::int32_t> person;  ///< whom the step is about
  std::string personName;                ///< what the recording calls them, in UTF-8; empty: by the number alone
  bool seen = true;                      ///< false: the person was not observed in this cycle, and ages
  KV::PersonObservation observation;     ///< readings of the person; empty if they were not seen

  std::vector<std::string> scopeStops;  ///< names of scopes that end after this step
};

}  // namespace KV::recordings
