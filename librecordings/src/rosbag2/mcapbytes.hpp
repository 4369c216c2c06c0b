#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace KV::recordings
{

class Unpacker;

/// An impossible value in a file of MCAP; the text does not name the file.
class McapError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// An open file whose bytes are read from any place. Not synchronised.
class McapInput
{
public:
  /// Opens the file at `path`; messages call it `name`.
  ///
  /// \throws Error if it cannot be opened.
  McapInput(const std::string& path, const std::string& name);
  ~McapInput();
  McapInput(const McapInput&) = delete;
  McapInput& operator=(const McapInput&) = delete;

  std::uint64_t size() const { return _size; }  ///< [bytes] when it was opened

  /// Reads up to `count` bytes from a place before the end; at least one.
  ///
  /// \throws Error if it cannot be read, or has become shorter.
  std::size_t readAt(std::uint64_t place, char* bytes, std::size_t count) const;

private:
  std::string _name;
  int _file;
  std::uint64_t _size = 0;
};

/// Bytes of a file that are returned one after the other, in bounded memory.
class McapBytes
{
public:
  virtual ~McapBytes() = default;

  /// Reads `count` bytes; returns how many there were, which is fewer at the end only.
  std::size_t read(char* bytes, std::size_t count);

  /// Skips the next `count` bytes; returns how many there were.
  std::uint64_t skip(std::uint64_t count);

  /// Returns some of the next bytes, which take() removes; none at the end.
  std::string_view peek();

  /// Skips `count` of the bytes that peek() returned.
  void take(std::size_t count);

  /// Returns how many bytes were read, skipped or taken.
  std::uint64_t place() const { return _place; }

  /// Begins the checksum of all following bytes, also of those that are skipped.
  void beginChecksum() { _isSummed = true; }

  /// Returns the checksum (CRC-32) since beginChecksum().
  std::uint32_t checksum() const { return _checksum; }

private:
  virtual std::size_t _fill(char* bytes, std::size_t count) = 0;  // with some of the next; 0 at the end
  virtual bool _skip(std::uint64_t) { return false; }             // false: they must be read

  std::array<char, std::size_t{64} << 10U> _buffer{};
  std::string_view _buffered;  // in _buffer
  std::uint64_t _place = 0;
  bool _isSummed = false;
  std::uint32_t _checksum = 0;
};

/// Bytes in the form in which the file has them.
class McapStoredBytes : public McapBytes
{
public:
  /// `input` must outlive it; `begin` + `count` are at most its size.
  McapStoredBytes(const McapInput& input, std::uint64_t begin, std::uint64_t count);

private:
  std::size_t _fill(char* bytes, std::size_t count) override;
  bool _skip(std::uint64_t count) override;

  const McapInput& _input;
  std::uint64_t _next;  // place in the file after the bytes that were returned
  std::uint64_t _end;
};

/// Bytes that were packed.
class McapUnpackedBytes : public McapBytes
{
public:
  McapUnpackedBytes(const McapInput& input, std::uint64_t begin, std::uint64_t count,
                    std::unique_ptr<Unpacker> unpacker);
  ~McapUnpackedBytes() override;

private:
  std::size_t _fill(char* bytes, std::size_t count) override;

  McapStoredBytes _stored;
  std::unique_ptr<Unpacker> _unpacker;
  bool _ended = false;
};

}  // namespace KV::recordings
