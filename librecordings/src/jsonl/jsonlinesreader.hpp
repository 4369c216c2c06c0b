#pragma once

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/timeunitcheck.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether a file with these first bytes holds JSON objects.
bool looksLikeJsonLines(const std::string& head);

/// Reads the project's own format: a JSON object on each line, see docs/recording-format.md.
class JsonLinesReader : public Reader
{
public:
  /// Takes an opened file.
  ///
  /// \throws Error if it cannot be read.
  explicit JsonLinesReader(InputFile input);

  boost::optional<Step> next() override;
  std::vector<std::string> describe() const override;

  /// Known after the first line is read.
  bool isDated() const override { return _isDated; }

  double progress() const override { return _file.progress(); }

private:
  InputFile _file;
  TimeUnitCheck _units;
  bool _anyRead = false;
  bool _isDated = true;
  ko::SystemClock::time_point _time;  // of the line read last
};

}  // namespace KV::recordings
