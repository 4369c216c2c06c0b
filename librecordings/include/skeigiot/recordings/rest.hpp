#pragma once

#include <skeigiot/api.hpp>

#include <ko/systemclock.hpp>

#include <string>

namespace KV::recordings
{

/// How it is known what a person's face looks like at rest. Scores count from there on: people differ at rest more than
/// an expression moves them.
struct SKEIGIOT_API Rest
{
  /// By what the rest is known.
  enum class Kind
  {
    Learned,  ///< from the faces so far, beginning with a typical face of the front end
    None,     ///< nothing is taken off
    Span      ///< as learned, and from the end of a span on, the median of that span
  };

  Kind kind = Kind::Learned;          ///< by what it is known
  ko::SystemClock::duration from{0};  ///< start of the span, since the first face of the recording
  ko::SystemClock::duration to{0};    ///< end of the span
};

/// Reads "learned", "none", or a span in seconds such as "2..7.5".
///
/// \throws std::invalid_argument for any other text, or if the span does not end after its start.
SKEIGIOT_API Rest parseRest(const std::string& text);

}  // namespace KV::recordings
