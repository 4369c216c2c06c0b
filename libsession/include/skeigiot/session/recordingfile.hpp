#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <memory>
#include <string>

namespace KV::session
{

/// Writes the steps of a live session to a file, as a recording in the own format, JSON Lines.
///
/// A replay of the file updates each person as the live session did, to the last bit, if a person who was forgotten
/// comes back under a number that nobody had before.
class SKEIGIOT_API RecordingFile : public SessionObserver
{
public:
  /// Makes the file.
  ///
  /// \param replaces  an existing file is overwritten; without it, a file that is there and not empty is an error
  /// \throws WriteError if the file cannot be made.
  RecordingFile(const std::string& path, bool replaces);
  ~RecordingFile() override;  ///< writes the steps that wait

  /// Writes the step. Where that fails, nothing is written from then on: see error().
  void stepBegins(const recordings::Step& step) override;

  /// Hands all steps so far to the system, as whole lines.
  void flush();

  /// Returns why nothing is written any more; empty as long as all is well.
  const std::string& error() const;

private:
  struct Record;

  std::unique_ptr<Record> _record;
};

}  // namespace KV::session
