#pragma once

#include "csv/personnames.hpp"
#include "input/jsonpieces.hpp"
#include "recording/speakertable.hpp"
#include "whisper/whispersegments.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether the file begins as a transcript of Whisper does.
bool looksLikeWhisper(const std::string& head);

/// A transcript of Whisper as readings of speaking, ten times a second while a person speaks and for a second after.
///
/// Reads all of the file at first: a person who speaks later is known from the start.
class WhisperReader : public Reader
{
public:
  /// \throws Error if something is wrong in the file or in the mapping.
  WhisperReader(InputFile file, const ReadingOptions& options);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;
  std::vector<std::string> takeWarnings() override;
  bool isDated() const override { return false; }
  double progress() const override;

private:
  using Tick = std::int64_t;  // tenths of a second

  /// Speech of one person.
  struct Speech
  {
    Tick first = 0;
    Tick last = 0;
  };

  struct Counts
  {
    std::size_t segments = 0;
    std::size_t silent = 0;
    std::size_t untimed = 0;
    std::size_t unassigned = 0;
  };

  void _read(InputFile file);
  bool _readPiece(JsonPieces& pieces);
  void _assign(const SpeakerTable& table);
  bool _isLeftOut(const SpeakerTable& table, const std::string& speaker);
  std::int32_t _numberOf(const SpeakerTable& table, const std::string& speaker);
  void _collectWarnings();
  void _advance();

  std::string _path;
  std::string _mapping;
  std::vector<WhisperSpan> _spans;  // as they were read; empty once they are assigned
  Counts _counts;
  bool _hasWords = false;
  PersonNames _names;
  std::map<std::int32_t, std::string> _namesOfPersons;
  std::map<std::string, std::string> _described;        // persons by the names of speakers
  std::map<std::string, std::size_t> _unknownSpeakers;  // that the table does not have
  std::map<std::int32_t, std::vector<Speech>> _speech;  // by time, apart from each other
  std::map<std::int32_t, std::size_t> _at;              // which speech of a person is the present one, or the next
  std::deque<BadLine> _bad;                             // that are not thrown yet
  std::deque<Step> _ready;
  std::vector<std::string> _warnings;
  Tick _tick = 0;
  Tick _end = 0;  // no step is later
};

}  // namespace KV::recordings
