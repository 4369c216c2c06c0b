#pragma once

#include "inputfile.hpp"
#include "recording.hpp"

#include <string>
#include <vector>

namespace tools
{

/// Tells from the first bytes of a file whether it holds JSON objects.
bool looksLikeJsonLines(const std::string& head);

/// Reads the project's own format: a JSON object on each line, see docs/recording-format.md.
class JsonLinesReader : public RecordingReader
{
public:
  /// Opens the file.
  ///
  /// \throws RecordingError if it cannot be opened.
  explicit JsonLinesReader(const std::string& path);

  boost::optional<RecordingEntry> next() override;
  std::vector<std::string> describe() const override;
  double progress() const override { return _file.progress(); }

private:
  InputFile _file;
  bool _anyRead = false;
  ko::SystemClock::time_point _time;  // of the line read last
};

}  // namespace tools
