#pragma once

#include "report/moment.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/inspection.hpp>
#include <skeigiot/session/scopes.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/session/summary.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace KV::session
{

/// Collects the data of a report on one session: a long recording is thinned while it is read, so that the memory grows
/// only with the number of persons.
class ReportRecorder : public SessionObserver
{
public:
  /// The greatest number of moments; beyond it they are thinned. So a report stays small enough to be sent and opened.
  /// Some moments of each person stay, so that thousands of persons take more.
  struct Limits
  {
    std::size_t moments = 20'000;
    std::size_t forces = 360'000;
  };

  struct Ambiance
  {
    Duration time{0};
    float agitation = 0.f;
    bool excited = false;
  };

  explicit ReportRecorder(const Limits& limits) : _limits(limits), _mostNow(limits) {}

  void recordingDated(bool isDated) override { _isDated = isDated; }
  void recordingDescribed(const std::vector<std::string>& description) override { _description = description; }
  void stepBegins(const recordings::Step& step) override;
  bool watchesForces() const override { return true; }
  void forceActed(const KV::Force& force) override;
  void personUpdated(const Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const ScopeVerdict& verdict) override;

  /// Completes the report; call it once, after the session was finished.
  void finish();

  const std::map<std::int32_t, std::vector<Moment>>& moments() const { return _moments; }
  const std::vector<std::string>& sources() const { return _sources; }
  const std::vector<Ambiance>& ambiance() const { return _ambiance; }
  const std::vector<ScopeVerdict>& scopes() const { return _scopes; }
  const Summary& summary() const { return _summary; }
  const Inspection& inspection() const { return _inspection; }

  /// Returns whether the times of the recording have a date.
  bool isDated() const { return _isDated; }

  /// Returns how signs, units and rate were read, a line each.
  const std::vector<std::string>& description() const { return _description; }

  /// Returns the length of the stretches of time of which only some moments were kept; 0 if all were kept.
  Duration stretch() const { return _stretch; }

  /// Returns how many moments all thinning has examined so far: its cost.
  std::size_t thinningCost() const { return _thinningCost; }

private:
  std::uint16_t _numberOfSource(std::string_view name);
  bool _isTooMuch() const { return _momentCount > _mostNow.moments || _forceCount > _mostNow.forces; }
  void _thin();
  void _thinAll();
  void _count();

  Limits _limits;
  bool _isDated = true;
  std::vector<std::string> _description;
  Limits _mostNow;  // when the moments are thinned next
  std::size_t _thinningCost = 0;
  std::map<std::int32_t, KV::PersonObservation> _inputs;  // of each person since the last update
  std::vector<MomentForce> _forces;                       // of the present update

  std::map<std::int32_t, std::vector<Moment>> _moments;
  std::size_t _momentCount = 0;
  std::size_t _forceCount = 0;
  Duration _stretch{0};
  std::vector<std::string> _sources;
  std::vector<Ambiance> _ambiance;
  std::vector<ScopeVerdict> _scopes;
  Summary _summary;
  Inspection _inspection;
};

}  // namespace KV::session
