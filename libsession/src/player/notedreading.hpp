#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <vector>

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

  /// Returns the warnings so far, and how many more there were, a line each.
  std::vector<std::string> warnings() const;

  /// Says how many lines were skipped, and what was wrong with the first; empty if there were none.
  std::string skippedText() const;

  /// These return what warnings() and skippedText() are made of.
  /// @{
  const std::vector<std::string>& firstWarnings() const { return _warnings; }
  std::size_t moreWarnings() const { return _moreWarnings; }
  std::size_t skipped() const { return _skipped; }
  const std::string& firstSkipped() const { return _firstSkipped; }
  /// @}

  /// Returns what ended the recording before its end.
  const boost::optional<recordings::Error>& error() const { return _error; }

private:
  Read _read(boost::optional<recordings::Step>& step);
  void _noteWarnings();

  recordings::Reader& _reader;
  bool _skipBad;
  std::vector<std::string> _warnings;
  std::size_t _moreWarnings = 0;
  std::size_t _skipped = 0;
  std::string _firstSkipped;
  boost::optional<recordings::Error> _error;
};

}  // namespace KV::session
