#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/changes.hpp>
#include <skeigiot/session/explanation.hpp>

#include <cstddef>
#include <vector>

namespace KV::session
{

/// All updates of one person in a span of time, and the forces that moved the estimates.
struct SKEIGIOT_API SpanExplanation
{
  /// Adds the next update of the person; updates come in the order of their times.
  void add(const Explanation& explanation)
  {
    if (updates == 0)
    {
      first = explanation.after.sinceStart;
      before = explanation.before;
    }
    ++updates;
    after = explanation.after;
    for (const ActedForce& force : explanation.forces)
      changes.add(force.source, force.quantity, force.target, force.before, force.after);
    zoneChanges.insert(zoneChanges.end(), explanation.zoneChanges.begin(), explanation.zoneChanges.end());
  }

  std::size_t updates = 0;                  ///< how many were added
  Duration first{0};                        ///< when the first update was
  Snapshot before;                          ///< after the last update before the span
  Snapshot after;                           ///< after its last update
  Changes changes;                          ///< by source and quantity, over all updates
  std::vector<SeenZoneChange> zoneChanges;  ///< in the order in which they were seen
};

}  // namespace KV::session
