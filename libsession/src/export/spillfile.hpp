#pragma once

#include <skeigiot/session/outputstream.hpp>

#include <memory>
#include <ostream>
#include <string>

namespace KV::session
{

/// A file without a name, for what is to be written elsewhere later; gone with the object, however the program ends.
class SpillFile
{
public:
  /// Makes a file on the disk of that folder.
  ///
  /// \throws WriteError if that fails.
  explicit SpillFile(const std::string& folder);
  ~SpillFile();
  SpillFile(const SpillFile&) = delete;
  SpillFile& operator=(const SpillFile&) = delete;

  std::ostream& stream() { return *_stream; }

  /// Writes all that it holds to another stream.
  ///
  /// \throws WriteError if the file cannot be written or read.
  void copyTo(std::ostream& target);

private:
  int _fileDescriptor = -1;
  std::unique_ptr<OutputStream> _stream;
};

}  // namespace KV::session
