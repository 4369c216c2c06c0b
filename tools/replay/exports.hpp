#pragma once

#include "jsonlineswriter.hpp"
#include "recording.hpp"
#include "replacedfile.hpp"
#include "updateexport.hpp"

#include <memory>
#include <string>
#include <vector>

namespace tools
{

/// The files that a replay writes, none of which is in its place before commit().
class Exports
{
public:
  /// Exports every update to a file of comma-separated values.
  void addCsv(const std::string& target);
  /// Exports every update to a file of JSON Lines.
  void addJsonl(const std::string& target);
  /// Writes the recording itself, in the own format.
  void addRecording(const std::string& target);

  bool empty() const { return _files.empty(); }

  void beginRecording(int number);
  void write(const RecordingEntry& entry);

  /// Returns what is to watch the sessions.
  std::vector<SessionObserver*> observers() const;

  /// Puts all files in their places.
  void commit();

private:
  std::ostream& _open(const std::string& target);

  std::vector<std::unique_ptr<ReplacedFile>> _files;
  std::vector<std::unique_ptr<UpdateExport>> _updates;
  std::vector<std::unique_ptr<JsonLinesWriter>> _recordings;
};

}  // namespace tools
