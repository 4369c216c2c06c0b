#pragma once

#include "unlocked.hpp"

#include <pybind11/pybind11.h>

#include <chrono>

namespace binding
{

/// Lets Python's signal handlers run now and then while the interpreter lock is released, so that a long call can be
/// interrupted.
class SignalCheck
{
public:
  /// \throws pybind11::error_already_set if a handler raises.
  void operator()()
  {
    const auto now = std::chrono::steady_clock::now();
    if (now - _last < std::chrono::milliseconds(50))
      return;
    _last = now;
    runHandlers();
  }

  static void runHandlers()
  {
    locked([] {
      if (unlessEnding(&PyErr_CheckSignals) != 0)
        throw pybind11::error_already_set();
    });
  }

private:
  std::chrono::steady_clock::time_point _last;
};

}  // namespace binding
