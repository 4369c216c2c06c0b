#pragma once

#include "scopes.hpp"
#include "snapshot.hpp"

#include <skeigiot/ambiancestate.hpp>

namespace tools
{

/// Watches one session after the other.
class SessionObserver
{
public:
  SessionObserver() = default;
  SessionObserver(const SessionObserver&) = delete;
  SessionObserver& operator=(const SessionObserver&) = delete;
  virtual ~SessionObserver() = default;

  /// A person was updated, or aged.
  virtual void personUpdated(const Snapshot&) {}

  /// The ambiance of the room was updated.
  virtual void ambianceUpdated(float /*agitation*/, KV::ExcitationState) {}

  /// A scope ended.
  virtual void scopeJudged(const ScopeVerdict&) {}
};

}  // namespace tools
