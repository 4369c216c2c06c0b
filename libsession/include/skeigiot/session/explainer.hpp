#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstdint>
#include <functional>
#include <map>

namespace KV::session
{

/// Hands on each update of one person with its forces, and notes who else is there.
class SKEIGIOT_API Explainer : public SessionObserver
{
public:
  /// When somebody was updated.
  struct Updates
  {
    Duration first{0};  ///< [ns] of the first update, since the start
    Duration last{0};   ///< [ns] of the last update, since the start
  };

  /// Calls `onUpdate` after each update of the person, on the thread that plays.
  Explainer(std::int32_t person, std::function<void(Explanation)> onUpdate);

  bool watchesForces() const override { return true; }
  void forceActed(const KV::Force& force) override;
  void zoneChanged(const KV::ZoneChange& change) override;
  void personUpdated(const Snapshot& snapshot) override;

  /// Returns everybody who was updated so far.
  const std::map<std::int32_t, Updates>& persons() const { return _persons; }

private:
  void _noteUpdate(const Snapshot& snapshot);

  std::int32_t _person;
  std::function<void(Explanation)> _onUpdate;
  Snapshot _before;          // of the person
  Explanation _explanation;  // of the update that is under way, whoever is updated
  std::map<std::int32_t, Updates> _persons;
};

}  // namespace KV::session
