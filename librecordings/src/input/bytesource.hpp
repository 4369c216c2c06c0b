#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>

namespace KV::recordings
{

/// Bytes in their order, decompressed if gzip or zstd compressed them.
class ByteSource
{
public:
  virtual ~ByteSource() = default;

  /// Reads up to `count` bytes; returns the number read, and 0 at the end or at a fault.
  virtual std::size_t read(char* bytes, std::size_t count) = 0;

  /// Says why the last read() found nothing; empty at the end.
  virtual std::string fault() const = 0;

  /// Returns which part of the compressed bytes was read: in [0, 1], and 0 if the total is unknown.
  virtual double progress() const = 0;
};

/// Opens a file.
///
/// \throws Error if it cannot be opened.
std::unique_ptr<ByteSource> bytesOfFile(const std::string& path);

/// Reads from the present position of the stream; the stream must outlive the source.
///
/// \throws Error that names `name` if the stream has failed before.
std::unique_ptr<ByteSource> bytesOfStream(std::istream& stream, const std::string& name);

}  // namespace KV::recordings
