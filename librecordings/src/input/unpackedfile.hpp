#pragma once

#include <string>

namespace KV::recordings
{

/// A temporary file with the contents of a file that gzip or zstd compressed; it is removed when the program no longer
/// needs it.
class UnpackedFile
{
public:
  /// \throws Error if the file cannot be read, or its contents need too much room.
  explicit UnpackedFile(const std::string& path);
  ~UnpackedFile();
  UnpackedFile(const UnpackedFile&) = delete;
  UnpackedFile& operator=(const UnpackedFile&) = delete;

  /// Returns the method of compression, "gzip" or "zstd"; empty if the file is not compressed.
  ///
  /// \throws Error if the file cannot be read.
  static std::string packingOf(const std::string& path);

  /// Returns the method by which the file was compressed.
  const std::string& packing() const { return _packing; }

  /// Returns the path of the contents.
  const std::string& path() const { return _path; }

  /// Explains why only the beginning could be unpacked, for a file that is damaged or cut; else empty.
  const std::string& fault() const { return _fault; }

private:
  void _unpack(const std::string& source);

  std::string _packing;
  std::string _path;
  std::string _fault;
  int _file = -1;
};

}  // namespace KV::recordings
