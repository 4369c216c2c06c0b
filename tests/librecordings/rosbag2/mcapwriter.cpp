#include "librecordings/rosbag2/mcapwriter.hpp"

#include <lz4frame.h>
#include <zlib.h>
#include <zstd.h>

#include <stdexcept>
#include <utility>

namespace support
{

std::string mcapText(const std::string& text)
{
  return mcapNumber(static_cast<std::uint32_t>(text.size())) + text;
}

std::string mcapRecord(std::uint8_t opcode, const std::string& fields)
{
  return mcapNumber(opcode) + mcapNumber(static_cast<std::uint64_t>(fields.size())) + fields;
}

std::string mcapSchema(std::uint16_t id, const std::string& name)
{
  return mcapRecord(3, mcapNumber(id) + mcapText(name) + mcapText("ros2msg") + mcapText("# what it holds"));
}

std::string mcapChannel(std::uint16_t id, std::uint16_t schema, const std::string& topic, const std::string& format)
{
  const std::string metadata = mcapText("offered_qos_profiles") + mcapText("");
  return mcapRecord(4, mcapNumber(id) + mcapNumber(schema) + mcapText(topic) + mcapText(format) + mcapText(metadata));
}

std::string mcapMessage(std::uint16_t channel, std::int64_t time, const std::string& data)
{
  return mcapRecord(5, mcapNumber(channel) + mcapNumber(std::uint32_t{0}) + mcapNumber(time) + mcapNumber(time) + data);
}

std::string mcapDataEnd(std::uint32_t checksum)
{
  return mcapRecord(15, mcapNumber(checksum));
}

std::string mcapFooter()
{
  return mcapRecord(2, std::string(20, '\0')) + std::string(mcapMagic);
}

std::string mcapChunk(const std::string& records, const std::string& compression)
{
  std::string packed = records;
  if (compression == "zstd")
    packed = packedByZstd(records);
  else if (compression == "lz4")
    packed = packedByLz4(records);
  return mcapChunk(packed, compression, records.size(), checksumOf(records));
}

std::string mcapChunk(const std::string& packed, const std::string& compression, std::uint64_t unpacked,
                      std::uint32_t checksum)
{
  return mcapRecord(6, mcapNumber(std::uint64_t{0}) + mcapNumber(std::uint64_t{0}) + mcapNumber(unpacked) +
                           mcapNumber(checksum) + mcapText(compression) +
                           mcapNumber(static_cast<std::uint64_t>(packed.size())) + packed);
}

std::string packedByZstd(const std::string& bytes)
{
  std::string packed(ZSTD_compressBound(bytes.size()), '\0');
  const std::size_t size = ZSTD_compress(packed.data(), packed.size(), bytes.data(), bytes.size(), 1);
  if (ZSTD_isError(size) != 0)
    throw std::runtime_error(ZSTD_getErrorName(size));
  packed.resize(size);
  return packed;
}

std::string packedByLz4(const std::string& bytes)
{
  std::string packed(LZ4F_compressFrameBound(bytes.size(), nullptr), '\0');
  const std::size_t size = LZ4F_compressFrame(packed.data(), packed.size(), bytes.data(), bytes.size(), nullptr);
  if (LZ4F_isError(size) != 0)
    throw std::runtime_error(LZ4F_getErrorName(size));
  packed.resize(size);
  return packed;
}

std::uint32_t checksumOf(const std::string& bytes)
{
  return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

void McapWriter::topic(const std::string& name, const std::string& type, const std::string& format)
{
  const auto id = static_cast<std::uint16_t>(_channels.size() + 1);
  _channels[name] = id;
  _put(mcapSchema(id, type));
  _put(mcapChannel(id, id, name, format));
}

void McapWriter::add(std::int64_t time, const std::string& topic, const std::string& data)
{
  _put(mcapMessage(_channels.at(topic), time, data));
}

std::string McapWriter::finish()
{
  _endChunk();
  _file += mcapDataEnd(checksumOf(_file));
  return _file + mcapFooter();
}

void McapWriter::_put(const std::string& record)
{
  if (!_form.hasChunks)
  {
    _file += record;
    return;
  }
  _chunk += record;
  if (_chunk.size() > _form.chunkSize)
    _endChunk();
}

void McapWriter::_endChunk()
{
  if (!_chunk.empty())
    _file += mcapChunk(std::exchange(_chunk, {}), _form.compression);
}

}  // namespace support
