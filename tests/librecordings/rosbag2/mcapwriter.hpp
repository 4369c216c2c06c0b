#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace support
{

/// \name Parts of a file of MCAP
/// @{
constexpr std::string_view mcapMagic = "\x89MCAP0\r\n";

template <typename Number>
std::string mcapNumber(Number number)  ///< little endian
{
  std::string bytes;
  for (std::size_t i = 0; i < sizeof(number); ++i)
    bytes += static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i));
  return bytes;
}

std::string mcapText(const std::string& text);
std::string mcapRecord(std::uint8_t opcode, const std::string& fields);
std::string mcapSchema(std::uint16_t id, const std::string& name);
std::string mcapChannel(std::uint16_t id, std::uint16_t schema, const std::string& topic,
                        const std::string& format = "cdr");
std::string mcapMessage(std::uint16_t channel, std::int64_t time, const std::string& data);
std::string mcapDataEnd(std::uint32_t checksum = 0);
std::string mcapFooter();

/// A chunk of these records, compressed by "", "lz4" or "zstd".
std::string mcapChunk(const std::string& records, const std::string& compression);

/// A chunk with any contents in its fields, true or not.
std::string mcapChunk(const std::string& packed, const std::string& compression, std::uint64_t unpacked,
                      std::uint32_t checksum);

std::string packedByZstd(const std::string& bytes);
std::string packedByLz4(const std::string& bytes);
std::uint32_t checksumOf(const std::string& bytes);  ///< CRC-32
/// @}

/// The form in which a file of MCAP is written.
struct McapForm
{
  std::string name;         ///< of a test
  std::string compression;  ///< of the chunks
  bool hasChunks = true;
  std::size_t chunkSize = 1000;  ///< [bytes] small, so that there are several
};

/// Writes a bag, as a file of MCAP.
class McapWriter
{
public:
  explicit McapWriter(McapForm form = {}) : _form(std::move(form)) {}

  /// Adds a topic.
  void topic(const std::string& name, const std::string& type, const std::string& format = "cdr");

  /// Adds a message received at a time [ns] since 1970.
  void add(std::int64_t time, const std::string& topic, const std::string& data);

  /// Returns the whole file, with checksums and a footer.
  std::string finish();

private:
  void _put(const std::string& record);
  void _endChunk();

  McapForm _form;
  std::string _file{mcapMagic};
  std::string _chunk;
  std::map<std::string, std::uint16_t> _channels;
};

}  // namespace support
