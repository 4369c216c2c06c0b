#pragma once

#include <skeigiot/api.hpp>

#include <functional>

namespace KV::recordings
{

/// Lets a program end what takes long on one thread, above all reading: while it lives, reading on its thread calls
/// `check` several times a second, also while it waits for a pipe.
///
/// An exception of `check` ends the reading and reaches the caller; it must not be an Error. Several of one thread are
/// nested: the newest is asked.
///
/// \par Thread safety
///   Belongs to the thread that made it, and is destroyed there. Other threads have their own.
class SKEIGIOT_API InterruptionCheck
{
public:
  /// Begins to ask `check`.
  explicit InterruptionCheck(std::function<void()> check);

  /// From now on the one before is asked again.
  ~InterruptionCheck();

  InterruptionCheck(const InterruptionCheck&) = delete;
  InterruptionCheck& operator=(const InterruptionCheck&) = delete;

  /// Calls the check of this thread, if there is one. Loops that may take longer than 0.1 s call it.
  ///
  /// \throws std::exception or anything else that the check throws.
  static void ask();

private:
  std::function<void()> _check;
  const InterruptionCheck* _outer;
};

}  // namespace KV::recordings
