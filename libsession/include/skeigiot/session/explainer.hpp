#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace KV::session
{

/// Hands on each update of one person, or of everybody, with its forces, and notes who is there.
class SKEIGIOT_API Explainer : public SessionObserver
{
public:
  /// When somebody was updated.
  struct Updates
  {
    Duration first{0};  ///< [ns] of the first update, since the start
    Duration last{0};   ///< [ns] of the last update, since the start
    std::string name;   ///< what the recording calls the person; empty if they have no name
  };

  /// Calls `onUpdate` after each update of the person, or of everybody without one, on the thread that plays.
  Explainer(boost::optional<std::int32_t> person, std::function<void(Explanation)> onUpdate);

  bool watchesForces() const override { return true; }
  void forceActed(const KV::Force& force) override;
  void zoneChanged(const KV::ZoneChange& change) override;
  void personUpdated(const Snapshot& snapshot) override;

  /// Returns everybody who was updated so far.
  const std::map<std::int32_t, Updates>& persons() const { return _persons; }

private:
  void _noteUpdate(const Snapshot& snapshot);

  boost::optional<std::int32_t> _person;
  std::function<void(Explanation)> _onUpdate;
  std::map<std::int32_t, Snapshot> _before;  // of those whose updates are handed on
  Explanation _explanation;                  // of the present update, of any person
  std::map<std::int32_t, Updates> _persons;
};

}  // namespace KV::session
