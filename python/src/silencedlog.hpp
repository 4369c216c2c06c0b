#pragma once

namespace binding
{

/// While it lives, log records of this thread are not passed to Python's logging: the caller collects
/// them.
class SilencedLog
{
public:
  SilencedLog() { ++_count; }
  ~SilencedLog() { --_count; }
  SilencedLog(const SilencedLog&) = delete;
  SilencedLog& operator=(const SilencedLog&) = delete;

  static bool isOn() { return _count > 0; }

private:
  inline static thread_local int _count = 0;
};

}  // namespace binding
