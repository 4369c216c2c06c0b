#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// A stretch of speech of one speaker.
struct WhisperSpan
{
  std::string speaker;  // empty: not said
  double from = 0.;     // [s]
  double to = 0.;       // [s], after `from`
};

/// The contents of one object of a transcript.
struct WhisperPiece
{
  std::vector<WhisperSpan> spans;
  std::size_t segments = 0;
  std::size_t silent = 0;   // segments left out, since Whisper takes them for no speech
  std::size_t untimed = 0;  // segments and words left out, since they have no usable times
  bool hasWords = false;    // some spans are words
};

/// Reads a result of Whisper, an object with segments; or a segment alone. Of words that have times, each is a span;
/// without them, the segment is one.
///
/// \throws JsonError that says where in it something is wrong.
WhisperPiece readWhisperPiece(std::string_view text);

}  // namespace KV::recordings
