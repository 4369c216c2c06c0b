#pragma once

#include "columns.hpp"

#include <skeigiot/session/scopes.hpp>
#include <skeigiot/session/sessionname.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace binding
{

/// The tables of a session.
struct ReplayTables
{
  Columns updates;
  Columns forces;       ///< "row" is the row of the update
  Columns zoneChanges;  ///< of all updates
  Columns ambiance;
  std::vector<KV::session::ScopeVerdict> verdicts;
};

/// Writes the data of a session into tables.
class ReplayRecord : public KV::session::SessionObserver
{
public:
  /// `session` is the session's name in exports; `explain` fills the tables of forces and of changes of zones. The
  /// tables must outlive the record.
  ReplayRecord(KV::session::SessionName session, bool explain, ReplayTables& tables)
    : _session(std::move(session)), _explain(explain), _tables(tables)
  {}

  bool watchesForces() const override { return _explain; }
  void forceActed(const KV::Force& force) override;
  void zoneChanged(const KV::ZoneChange& change) override;
  void recordingDated(bool isDated) override { _isDated = isDated; }
  void stepBegins(const KV::recordings::Step& entry) override;
  void personUpdated(const KV::session::Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const KV::session::ScopeVerdict& verdict) override { _tables.verdicts.push_back(verdict); }

private:
  KV::session::SessionName _session;
  bool _explain;
  ReplayTables& _tables;
  std::int64_t _updates = 0;
  bool _isDated = true;
  bool _begun = false;
  KV::session::TimePoint _start;
  KV::session::TimePoint _now;
};

}  // namespace binding
