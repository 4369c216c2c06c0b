#include "rosbag2/mcapfile.hpp"

#include "input/unpackedfile.hpp"
#include "input/unpacker.hpp"
#include "rosbag2/mcapbytes.hpp"
#include "rosbag2/mcapmessages.hpp"
#include "rosbag2/mcaprecords.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace KV::recordings
{
namespace
{
// Messages outside of chunks are read together up to so many bytes.
constexpr std::uint64_t longestRun = limits::mebibyte;

McapPart::Compression compressionOf(const std::string& name)
{
  if (name.empty())
    return McapPart::Compression::None;
  if (name == "lz4")
    return McapPart::Compression::Lz4;
  if (name == "zstd")
    return McapPart::Compression::Zstd;
  throw McapError("is compressed by " + quote(name) + ", expected lz4 or zstd");
}

std::string kindOf(McapPart::Compression compression)
{
  switch (compression)
  {
    case McapPart::Compression::Lz4:
      return "chunks compressed by lz4";
    case McapPart::Compression::Zstd:
      return "chunks compressed by zstd";
    default:
      return "chunks not compressed";
  }
}

std::uint64_t sizeOf(const std::string& path)
{
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

}  // namespace

std::unique_ptr<McapBytes> McapPart::open(const McapInput& input) const
{
  switch (compression)
  {
    case Compression::Lz4:
      return std::make_unique<McapUnpackedBytes>(input, begin, stored, lz4Unpacker());
    case Compression::Zstd:
      return std::make_unique<McapUnpackedBytes>(input, begin, stored, zstdUnpacker());
    default:
      return std::make_unique<McapStoredBytes>(input, begin, stored);
  }
}

// Chunks may be much larger than their stored form, so their limit is computed from the size of the given file.
McapFile::McapFile(const std::string& path, std::unique_ptr<const UnpackedFile> unpacked)
  : BagFile(path, std::move(unpacked)),
    _mostUnpacked(limits::mostUnpackedPerByte * sizeOf(path) + limits::mostUnpackedOfAnyBag)
{
  const McapInput input(_contents(), path);
  _size = input.size();
  _scan(input);
  _endRun();
}

std::unique_ptr<BagMessages> McapFile::messagesOf(const std::vector<std::int64_t>& topics)
{
  return std::make_unique<McapMessages>(*this, topics);
}

std::unique_ptr<McapInput> McapFile::input() const
{
  auto input = std::make_unique<McapInput>(_contents(), path());
  if (input->size() < _size)
    _fail("has become shorter while it was read");
  return input;
}

void McapFile::fail(std::uint64_t place, const std::string& what) const
{
  _fail("the record at byte " + std::to_string(place) + " is damaged: " + what);
}

void McapFile::failForOrder() const
{
  _fail("its messages are out of order over more than " + std::to_string(limits::largestMixed / limits::mebibyte) +
        " MiB: sort them first, as 'mcap sort' does");
}

void McapFile::failForSize(const McapPart& part) const
{
  _fail("the chunk at byte " + std::to_string(part.begin) + " holds more than " +
        std::to_string(limits::largestMixed / limits::mebibyte) +
        " MiB of messages that are read: write the bag in smaller chunks");
}

std::string McapFile::_container() const
{
  std::string text = "MCAP";
  for (const std::string& kind : _kinds)
    text += (kind == *_kinds.begin() ? ", " : " and ") + kind;
  return text;
}

void McapFile::_scan(const McapInput& input)
{
  McapStoredBytes bytes(input, 0, _size);
  std::array<char, mcapMagicSize> magic{};
  const std::size_t read = bytes.read(magic.data(), magic.size());
  if (std::string_view(magic.data(), read) != std::string_view(mcapMagic, mcapMagicSize))
    _fail("does not begin as a file of MCAP, version 0");
  for (;;)
  {
    const std::uint64_t begin = bytes.place();
    const auto record = nextMcapRecord(bytes);
    if (!record || record->opcode == McapOpcode::Zero)
      return _noteCut(begin);
    const bool isCut = record->length > _size - bytes.place();
    try
    {
      if (!_scanRecord(input, bytes, *record, isCut))
        return _scanSummary(bytes);
    }
    catch (const McapError& error)
    {
      if (!isCut)
        fail(begin, error.what());
    }
    if (isCut)
      return _noteCut(begin);
    if (_run)
    {
      _run->stored = _run->records = bytes.place() - _run->begin;
      if (_run->stored > longestRun)
        _endRun();
    }
  }
}

// Reads one record of the file; false after the last of the data. Of a cut record, the whole records of a chunk count.
bool McapFile::_scanRecord(const McapInput& input, McapBytes& bytes, const McapRecord& record, bool isCut)
{
  const std::uint64_t begin = bytes.place() - McapRecord::headSize;
  McapFields fields(bytes, std::min(record.length, _size - bytes.place()));
  if (record.opcode == McapOpcode::Chunk)
  {
    _endRun();
    const McapChunkHead head = readMcapChunkHead(fields);
    if (head.packed > fields.left() && !isCut)
      throw McapError("its records are longer than the chunk");
    _scanChunk(input, bytes.place(), head, std::min(head.packed, fields.left()), isCut);
  }
  else if (isCut)
    return true;
  else if (record.opcode == McapOpcode::Footer)
    return false;
  else if (record.opcode == McapOpcode::DataEnd)
  {
    _checkData(input, begin, fields.number32());
    fields.skipRest();
    return false;
  }
  else if (record.opcode == McapOpcode::Message)
  {
    if (!_run)
    {
      _run.emplace();
      _run->begin = begin;
      _run->firstNumber = _messages + 1;
    }
    _takeMessage(fields);
  }
  else
    _takeUnlessMessage(record, fields);
  fields.skipRest();
  return true;
}

// Topics without a message are declared only after the data. No message needs them, so damage there is ignored.
void McapFile::_scanSummary(McapBytes& bytes)
{
  try
  {
    while (const auto record = nextMcapRecord(bytes))
    {
      if (record->opcode == McapOpcode::Footer || record->length > _size - bytes.place())
        return;
      McapFields fields(bytes, record->length);
      _takeUnlessMessage(*record, fields);
      fields.skipRest();
    }
  }
  catch (const McapError&)
  {}
}

void McapFile::_scanChunk(const McapInput& input, std::uint64_t begin, const McapChunkHead& head, std::uint64_t stored,
                          bool isCut)
{
  McapPart part;
  part.begin = begin;
  part.stored = stored;
  part.compression = compressionOf(head.compression);
  part.firstNumber = _messages + 1;
  if (part.compression == McapPart::Compression::None)
  {
    if (head.packed != head.unpacked)
      throw McapError("is not compressed, and has two sizes");
  }
  else
    _addUnpacked(head.unpacked);
  const std::unique_ptr<McapBytes> bytes = part.open(input);
  const bool isSummed = head.checksum != 0 && !isCut;
  if (isSummed)
    bytes->beginChecksum();
  _scanRecords(*bytes, head.unpacked, isCut, part);
  if (isSummed && bytes->checksum() != head.checksum)
    throw McapError("its checksum is another one");
  if (!isCut && !bytes->peek().empty())
    throw McapError("unpacks to more bytes than it says");
  _kinds.insert(kindOf(part.compression));
  _endPart(std::move(part));
}

// Reads the records of a chunk. Of a cut chunk, the whole records count.
void McapFile::_scanRecords(McapBytes& bytes, std::uint64_t size, bool isCut, McapPart& part)
{
  while (bytes.place() < size)
  {
    try
    {
      const auto record = nextMcapRecord(bytes);
      if (!record)
        throw McapError("unpacks to fewer bytes than it says");
      if (bytes.place() > size || record->length > size - bytes.place())
        throw McapError("holds a record that is longer than what is left of it");
      McapFields fields(bytes, record->length);
      if (record->opcode == McapOpcode::Message)
        _takeMessage(fields);
      else
        _takeUnlessMessage(*record, fields);
      fields.skipRest();
    }
    catch (const McapError&)
    {
      if (!isCut)
        throw;
      return;
    }
    part.records = bytes.place();
  }
}

void McapFile::_takeUnlessMessage(const McapRecord& record, McapFields& fields)
{
  if (record.opcode == McapOpcode::Schema)
    _takeSchema(fields);
  else if (record.opcode == McapOpcode::Channel)
    _takeChannel(fields);
}

void McapFile::_takeSchema(McapFields& fields)
{
  McapSchema schema = readMcapSchema(fields);
  if (schema.id == 0)
    throw McapError("a type has the number 0, which means none");
  const auto [known, isNew] = _schemas.emplace(schema.id, schema.name);
  if (!isNew && known->second != schema.name)
    throw McapError("the type " + std::to_string(schema.id) + " has two names");
  if (_schemas.size() > limits::mostTopics)
    _fail("has more than " + std::to_string(limits::mostTopics) + " types");
}

void McapFile::_takeChannel(McapFields& fields)
{
  McapChannel channel = readMcapChannel(fields);
  const auto schema = _schemas.find(channel.schema);
  if (channel.schema != 0 && schema == _schemas.end())
    throw McapError("the topic " + quote(channel.topic) + " has the type " + std::to_string(channel.schema) +
                    ", which is not declared before it");
  BagTopic topic{std::move(channel.topic), channel.schema == 0 ? "" : schema->second, std::move(channel.encoding)};
  const auto known = topics().find(channel.id);
  if (known == topics().end())
  {
    if (topics().size() == limits::mostTopics)
      _failForTopics();
    _addTopic(channel.id, std::move(topic));
  }
  else if (known->second.name != topic.name || known->second.type != topic.type || known->second.format != topic.format)
    throw McapError("the channel " + std::to_string(channel.id) + " is declared twice, with different topics");
}

void McapFile::_takeMessage(McapFields& fields)
{
  const McapMessageHead head = readMcapMessageHead(fields);
  if (topics().count(head.channel) == 0)
    throw McapError("a message is of the channel " + std::to_string(head.channel) +
                    ", which is not declared before it");
  fields.skipRest();
  ++_messages;
  const auto [earliest, isNew] = _earliest.emplace(head.channel, head.time);
  if (!isNew)
    earliest->second = std::min(earliest->second, head.time);
  if (head.time < 0)
    return;
  const Span whole = span().value_or(Span{head.time, head.time});
  _setSpan({std::min(whole.first, head.time), std::max(whole.last, head.time)});
}

void McapFile::_endPart(McapPart part)
{
  part.channels.assign(_earliest.begin(), _earliest.end());
  _earliest.clear();
  if (!part.channels.empty())
    _parts.push_back(std::move(part));
}

void McapFile::_endRun()
{
  if (!_run)
    return;
  _kinds.insert("without chunks");
  _endPart(std::move(*_run));
  _run.reset();
}

// Few writers add a checksum of the whole data, and all of the data must be read for it.
void McapFile::_checkData(const McapInput& input, std::uint64_t end, std::uint32_t checksum) const
{
  if (checksum == 0)
    return;
  McapStoredBytes bytes(input, 0, end);
  bytes.beginChecksum();
  bytes.skip(end);
  if (bytes.checksum() != checksum)
    _fail("the data are damaged: their checksum is another one");
}

void McapFile::_addUnpacked(std::uint64_t bytes)
{
  if (bytes > _mostUnpacked - _unpackedBytes)
    _fail("its chunks unpack to more than " + std::to_string(_mostUnpacked / limits::mebibyte) + " MiB, which is " +
          std::to_string(limits::mostUnpackedPerByte) + " times the size of the file and " +
          std::to_string(limits::mostUnpackedOfAnyBag / limits::mebibyte) +
          " MiB: if you trust it, unpack it yourself, as 'mcap decompress' does");
  _unpackedBytes += bytes;
}

void McapFile::_noteCut(std::uint64_t place)
{
  _lack = "ends early, at byte " + std::to_string(place) +
          ": the file was cut, or its recording was not ended. What stands before is read";
}

}  // namespace KV::recordings
