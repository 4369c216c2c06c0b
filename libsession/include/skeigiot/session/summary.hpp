#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/personsummary.hpp>
#include <skeigiot/session/scopes.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace KV::session
{

/// Means and shares of one recording.
class SKEIGIOT_API Summary : public SessionObserver
{
public:
  void personUpdated(const Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const ScopeVerdict& verdict) override;

  /// Completes the sums; call it once, after the session was finished.
  void finish();

  /// Returns the persons by their numbers.
  const std::map<std::int32_t, PersonSummary>& persons() const { return _persons; }

  /// Returns the verdicts by their start, longer scopes first; complete once the summary is finished.
  const std::vector<ScopeVerdict>& verdicts() const { return _verdicts; }

  /// Means of the ambiance of the room.
  struct Ambiance
  {
    std::size_t updates = 0;    ///< how often the room was updated
    std::size_t excited = 0;    ///< how many of these updates found it excited
    double agitation = 0.;      ///< summed up
    float lastAgitation = 0.f;  ///< after the last update
  };
  /// Returns what was said of the room; all 0 if nothing was.
  const Ambiance& ambiance() const { return _ambiance; }

private:
  std::map<std::int32_t, PersonSummary> _persons;
  std::vector<ScopeVerdict> _verdicts;
  Ambiance _ambiance;
};

}  // namespace KV::session
