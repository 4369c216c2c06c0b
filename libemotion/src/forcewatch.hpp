#pragma once

#include <skeigiot/forceobserver.hpp>

#include <string_view>

namespace KV
{

/// Shows forces to the observer of the calling thread.
class ForceWatch
{
public:
  /// Returns whether an observer is set. Without a constructor of the thread's storage: one load.
  static bool isOn() { return _observer != nullptr; }

  /// \name Only if an observer is set
  /// \throws every exception of the observer's callback and of the clock.
  /// @{
  static void show(Quantity quantity, float target, float weight, float before, float after, std::string_view source);
  static void show(ko::human::AttentionState from, ko::human::AttentionState to, ZoneEvidence evidence);
  /// @}

private:
  friend class ScopedForceObserver;

  static __thread const ScopedForceObserver* _observer __attribute__((tls_model("initial-exec")));
};

}  // namespace KV
