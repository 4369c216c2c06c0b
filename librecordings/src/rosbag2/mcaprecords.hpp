#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace KV::recordings
{

class McapBytes;

/// The first and the last bytes of a file.
constexpr char mcapMagic[] = "\x89MCAP0\r\n";
constexpr std::size_t mcapMagicSize = sizeof(mcapMagic) - 1;  ///< [bytes]

/// The kinds of records, and the fields that are read.
enum class McapOpcode : std::uint8_t
{
  Zero = 0x00,  ///< no record has this kind: there are zeros where records should be
  Footer = 0x02,
  Schema = 0x03,
  Channel = 0x04,
  Message = 0x05,
  Chunk = 0x06,
  DataEnd = 0x0F
};

/// The head of a record.
struct McapRecord
{
  static constexpr std::uint64_t headSize = 9;  ///< [bytes]

  McapOpcode opcode = {};    ///< also others than those listed, which are skipped
  std::uint64_t length = 0;  ///< [bytes] of the fields after the head
};

/// Reads the fields of one record. The operations throw McapError if the record ends too early.
class McapFields
{
public:
  /// `bytes` are after the head of the record, and have all of it.
  McapFields(McapBytes& bytes, std::uint64_t length) : _bytes(bytes), _left(length) {}

  std::uint16_t number16() { return static_cast<std::uint16_t>(_number(2)); }
  std::uint32_t number32() { return static_cast<std::uint32_t>(_number(4)); }
  std::uint64_t number64() { return _number(8); }

  /// \throws McapError as well if the text is longer than limits::longestTopicName; `what` names the field.
  std::string text(const char* what);

  std::uint64_t left() const { return _left; }  ///< [bytes] after the fields that were read

  /// Reads the remaining bytes into memory; the caller limits their number.
  void rest(char* bytes);
  void skipRest();

private:
  std::uint64_t _number(std::size_t size);
  void _read(char* bytes, std::size_t count);

  McapBytes& _bytes;
  std::uint64_t _left;
};

/// Reads the head of the next record; nothing if fewer bytes are left.
std::optional<McapRecord> nextMcapRecord(McapBytes& bytes);

/// A record with the type of the messages of some channels.
struct McapSchema
{
  std::uint16_t id = 0;
  std::string name;
};

/// A record with the topic of the messages with its id.
struct McapChannel
{
  std::uint16_t id = 0;
  std::uint16_t schema = 0;  ///< 0: no schema
  std::string topic;
  std::string encoding;  ///< of its messages: "cdr"
};

/// The fields of a message before its data.
struct McapMessageHead
{
  std::uint16_t channel = 0;
  std::int64_t time = 0;  ///< [ns] since 1970, when it was received; below 0 if the clock cannot show it
};

/// The fields of a chunk before its records.
struct McapChunkHead
{
  std::uint64_t unpacked = 0;  ///< [bytes]
  std::uint32_t checksum = 0;  ///< CRC-32 of the unpacked records; 0: no checksum
  std::string compression;     ///< "", "lz4" or "zstd"
  std::uint64_t packed = 0;    ///< [bytes]
};

// Each operation leaves the fields at the end of those that it reads.

McapSchema readMcapSchema(McapFields& fields);
McapChannel readMcapChannel(McapFields& fields);
McapMessageHead readMcapMessageHead(McapFields& fields);
McapChunkHead readMcapChunkHead(McapFields& fields);

}  // namespace KV::recordings
