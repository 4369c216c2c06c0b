#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/reportadditions.hpp>
#include <skeigiot/session/reportorigin.hpp>
#include <skeigiot/session/reportoverview.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

class ReportRecorder;

/// The report of one session: an HTML page of the estimates of each person, the readings, and every force.
///
/// Memory is bounded: a long session is thinned while it is played, and the page says so.
class SKEIGIOT_API Report : public SessionObserver
{
public:
  /// Returns whether the library was built with the page.
  static bool isAvailable();

  /// Begins an empty report.
  Report();
  ~Report() override;

  bool watchesForces() const override { return true; }
  void recordingDated(bool isDated) override;
  void recordingDescribed(const std::vector<std::string>& description) override;
  void stepBegins(const recordings::Step& step) override;
  void forceActed(const KV::Force& force) override;
  void personUpdated(const Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const ScopeVerdict& verdict) override;

  /// Adds what the page shows beside the session. Call it before write().
  ///
  /// \return warnings on labels that the page does not show
  std::vector<std::string> add(const ReportAdditions& additions);

  /// Writes the page, which says where it comes from. Call it once, after the session has ended.
  ///
  /// \throws std::logic_error if the library was built without the page.
  void write(std::ostream& stream, const ReportOrigin& origin);

  /// As above, with names of the inputs of the session, and with warnings and errors.
  void write(std::ostream& stream, const std::vector<std::string>& inputs, const std::vector<std::string>& notes);

  /// Returns what an index of several reports shows of this one. Call it after write().
  ReportOverview overview() const;

private:
  struct Added;

  std::unique_ptr<ReportRecorder> _recorder;
  std::unique_ptr<Added> _added;
};

}  // namespace KV::session
