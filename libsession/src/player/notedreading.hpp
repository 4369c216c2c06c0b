#pragma once

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/readingnotes.hpp>

#include <boost/optional/optional.hpp>

namespace KV::session
{

/// Reads a recording to its end, or to where it turns bad, and notes what there is to say of it: the first few warnings
/// and bad lines only, so that the memory is bounded.
class NotedReading
{
public:
  enum class Read
  {
    Taken,
    Skipped,  ///< a bad line stands in its place
    End       ///< of the recording, or of what can be read of it
  };

  /// The reader must outlive it. `skipBad` goes on behind lines that cannot be used.
  NotedReading(recordings::Reader& reader, bool skipBad) : _reader(reader), _skipBad(skipBad) {}

  /// Reads the next step, which is there if it is taken.
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
