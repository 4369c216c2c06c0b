#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/outputstream.hpp>

#include <memory>
#include <ostream>
#include <string>

namespace KV::session
{

/// A file that is written beside its target and takes its place only when it is complete.
///
/// A reader of the target sees the old file or the whole new one. A target that is no regular file, such as a device
/// or a named pipe, cannot be replaced and is written directly; so is standard output, which goes by the name "-".
class SKEIGIOT_API ReplacedFile
{
public:
  /// Opens the file for writing, if the check admits it.
  ///
  /// \throws OutputRefused if the check refuses it.
  /// \throws WriteError if it cannot be opened; no file is left behind then.
  ReplacedFile(const std::string& target, OutputCheck& check);

  /// Drops what was written, unless it was committed.
  ~ReplacedFile();

  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /// Returns where to write the contents; valid as long as the file.
  std::ostream& stream() { return *_stream; }

  /// Brings all that was written to the disk, and puts it in the place of the target.
  ///
  /// \throws WriteError if that fails; the target is as it was then.
  void commit();

private:
  ReplacedFile(const std::string& name, std::string path);
  void _openBeside();

  std::string _name;       // as the user gave it, for errors
  std::string _target;     // where links lead to
  std::string _temporary;  // empty: written directly
  int _fileDescriptor = -1;
  std::unique_ptr<OutputStream> _stream;
};

}  // namespace KV::session
