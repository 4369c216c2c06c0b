#pragma once

#include <string>

namespace KV::recordings
{

/// A file that is removed when the program is done with it: the contents of one that is compressed by gzip.
class UnpackedFile
{
public:
  /// \throws Error if the file cannot be read, is damaged or cut, or holds more than there is room for.
  explicit UnpackedFile(const std::string& path);
  ~UnpackedFile();
  UnpackedFile(const UnpackedFile&) = delete;
  UnpackedFile& operator=(const UnpackedFile&) = delete;

  /// Tells whether the file is compressed by gzip.
  static bool isNeededFor(const std::string& path);

  /// Returns where the contents are.
  const std::string& path() const { return _path; }

private:
  void _unpack(const std::string& source);

  std::string _path;
  int _file = -1;
};

}  // namespace KV::recordings
