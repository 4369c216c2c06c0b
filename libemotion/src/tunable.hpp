#pragma once

#include <boost/thread/synchronized_value.hpp>

namespace KV
{

/// A process-wide number, read and written under its own mutex.
using Tunable = boost::synchronized_value<float>;

/// The open interval that a tunable may lie in, with the words for it in the warning.
struct TunableInterval
{
  float lower;
  float upper;
  const char* words;
};

constexpr TunableInterval valenceInterval{-1.f, 1.f, "-1.0 and 1.0"};
constexpr TunableInterval unitInterval{0.f, 1.f, "0.0 and 1.0"};

/// The source of a warning about a rejected value.
struct WarningSource
{
  const char* category;
  const char* file;
  const char* function;
  int line;
};

/// Stores `value` if it lies strictly inside the interval; otherwise logs "<function> failed: <value> is not between
/// <words>." as a warning and changes nothing. A NaN lies outside.
void setTunable(Tunable& tunable, float value, const TunableInterval& interval, const WarningSource& source);

}  // namespace KV
