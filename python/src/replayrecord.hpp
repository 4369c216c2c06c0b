#pragma once

#include "columns.hpp"
#include "scopes.hpp"
#include "sessionobserver.hpp"

#include <cstdint>
#include <vector>

namespace binding
{

/// What a session told.
struct ReplayTables
{
  Columns updates;
  Columns forces;       ///< "row" is that of the update
  Columns zoneChanges;  ///< likewise
  Columns ambiance;
  std::vector<tools::ScopeVerdict> verdicts;
};

/// Keeps what a session tells in tables.
class ReplayRecord : public tools::SessionObserver
{
public:
  /// `recording` is the number of the session, as exports have it. The tables must outlive the record.
  ReplayRecord(std::int32_t recording, ReplayTables& tables) : _recording(recording), _tables(tables) {}

  void forceActed(const KV::Force& force) override;
  void zoneChanged(const KV::ZoneChange& change) override;
  void stepBegins(const tools::RecordingEntry& entry) override;
  void personUpdated(const tools::Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const tools::ScopeVerdict& verdict) override { _tables.verdicts.push_back(verdict); }

private:
  std::int32_t _recording;
  ReplayTables& _tables;
  std::int64_t _updates = 0;
  bool _begun = false;
  tools::TimePoint _start;
  tools::TimePoint _now;
};

}  // namespace binding
