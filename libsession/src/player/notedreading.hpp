#pragma once

#include "recording.hpp"

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace tools
{

/// Reads a recording to its end, or to where it turns bad, and notes what there is to say of it: the first few warnings
/// and bad lines only, so that the memory is bounded.
class NotedReading
{
public:
  enum class Step
  {
    Taken,
    Skipped,  ///< a bad line stands in its place
    End       ///< of the recording, or of what can be read of it
  };

  /// The reader must outlive it. `skipBad` goes on behind lines that cannot be used.
  NotedReading(RecordingReader& reader, bool skipBad) : _reader(reader), _skipBad(skipBad) {}

  /// Reads the next entry, which is there if the step is taken.
  Step next(boost::optional<RecordingEntry>& entry);

  /// Returns the warnings so far, and how many more there were, a line each.
  std::vector<std::string> warnings() const;

  /// Says how many lines were skipped, and what was wrong with the first; empty if there were none.
  std::string skippedText() const;

  /// Returns what ended the recording before its end.
  const boost::optional<RecordingError>& error() const { return _error; }

private:
  Step _read(boost::optional<RecordingEntry>& entry);
  void _noteWarnings();

  RecordingReader& _reader;
  bool _skipBad;
  std::vector<std::string> _warnings;
  std::size_t _moreWarnings = 0;
  std::size_t _skipped = 0;
  std::string _firstSkipped;
  boost::optional<RecordingError> _error;
};

}  // namespace tools
