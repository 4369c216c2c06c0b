#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/columns.hpp>
#include <skeigiot/recordings/step.hpp>

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Reads one recording, step by step and in constant memory.
class SKEIGIOT_API Reader
{
public:
  virtual ~Reader() = default;

  /// Returns the next step, or nothing at the end.
  ///
  /// \throws BadLine for a line that cannot be used; the next call goes on behind it.
  /// \throws Error where the rest of the file cannot be used either.
  virtual boost::optional<Step> next() = 0;

  /// Says in two lines how signs, units and rate are read, so that a wrong guess is seen.
  virtual std::vector<std::string> describe() const = 0;

  /// Says what was learned so far of the persons' faces at rest, a line each; empty if nothing was.
  virtual std::vector<std::string> describeLearned() const { return {}; }

  /// Returns the warnings that came up since the last call.
  virtual std::vector<std::string> takeWarnings() { return {}; }

  /// Returns whether the times have a date. If not, they count from the start of the recording and were placed on
  /// 2020-01-01: only the time since the first step means anything. Known once the first step was read.
  virtual bool isDated() const { return true; }

  /// Returns which columns are read; empty if the format has no columns, or does not report them.
  virtual Columns columns() const { return {}; }

  /// Returns how far the file was read, in [0, 1].
  virtual double progress() const = 0;
};

}  // namespace KV::recordings
