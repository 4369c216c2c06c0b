#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace KV::recordings
{

/// Packed bytes that cannot be unpacked: they are damaged, or need too much memory.
class UnpackError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// Unpacks bytes that were packed by one method, piece by piece, in bounded memory: see limits::largestWindow.
///
/// Packed bytes consist of one or several parts, each of which can be unpacked without the others. Not synchronised.
class Unpacker
{
public:
  virtual ~Unpacker() = default;

  /// The result of one call of unpack().
  struct Progress
  {
    std::size_t taken = 0;  ///< [bytes] of the packed ones
    std::size_t made = 0;   ///< [bytes] that were written
    bool ended = false;     ///< the part ended; restart() begins the next one
  };

  /// Unpacks some of the packed bytes, until they are used up, `room` is full or the part ends.
  ///
  /// Some methods keep bytes that do not fit: call it again without packed bytes until it writes nothing.
  ///
  /// \throws UnpackError if they are damaged, or need too much memory.
  virtual Progress unpack(std::string_view packed, char* bytes, std::size_t room) = 0;

  /// Begins another part.
  virtual void restart() = 0;
};

/// \name The methods
/// \throws std::bad_alloc if there is not enough memory.
/// @{
std::unique_ptr<Unpacker> gzipUnpacker();
std::unique_ptr<Unpacker> zstdUnpacker();
std::unique_ptr<Unpacker> lz4Unpacker();  ///< frames of LZ4
/// @}

constexpr std::string_view gzipMagic = "\x1f\x8b";          ///< the first bytes of a part of gzip
constexpr std::string_view zstdMagic = "\x28\xB5\x2F\xFD";  ///< the first bytes of a part of zstd
constexpr std::size_t longestPackedMagic = 4;               ///< [bytes]

}  // namespace KV::recordings
