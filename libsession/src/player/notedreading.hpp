#pragma once

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/readingnotes.hpp>

#include <boost/optional/optional.hpp>

namespace KV::session
{

/// Reads a recording to its end, or to its first fault, and notes its problems: only the first few warnings and bad
/// lines, so that the memory is bounded.
class NotedReading
{
public:
  enum class Read
  {
    Taken,
    Skipped,  ///< empty for a bad line
    End       ///< of the recording, or of its readable part
  };

  /// The reader must outlive it. `skipBad` skips lines that cannot be used.
  NotedReading(recordings::Reader& reader, bool skipBad) : _reader(reader), _skipBad(skipBad) {}

  /// Reads the next step; `step` is empty if a bad line was skipped.
  Read next(boost::optional<recordings::Step>& step);

  /// Returns the problems so far.
  const ReadingNotes& notes() const { return _notes; }

private:
  Read _read(boost::optional<recordings::Step>& step);
  void _noteWarnings();

  recordings::Reader& _reader;
  bool _skipBad;
  ReadingNotes _notes;
};

}  // namespace KV::session
