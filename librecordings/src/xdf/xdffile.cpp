#include "xdf/xdffile.hpp"

#include "input/utf8text.hpp"
#include "input/xmlmemory.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
enum Tag : std::uint16_t
{
  FileHeader = 1,
  StreamHeader = 2,
  Samples = 3,
  ClockOffset = 4,
  Boundary = 5,
  StreamFooter = 6
};

constexpr std::uint64_t tagSize = 2;
constexpr std::uint64_t idSize = 4;
constexpr double greatestRate = 1e9;
constexpr double greatestTime = 9e9;  // [s]

struct ValuesName
{
  const char* name;
  XdfValues values;
};

constexpr std::array<ValuesName, 8> valuesNames = {{{"float32", XdfValues::Float},
                                                    {"double64", XdfValues::Double},
                                                    {"int8", XdfValues::Int8},
                                                    {"int16", XdfValues::Int16},
                                                    {"int32", XdfValues::Int32},
                                                    {"int64", XdfValues::Int64},
                                                    {"string", XdfValues::Text},
                                                    {"undefined", XdfValues::Text}}};

std::uint64_t sizeOf(XdfValues values)
{
  switch (values)
  {
    case XdfValues::Int8:
      return 1;
    case XdfValues::Int16:
      return 2;
    case XdfValues::Float:
    case XdfValues::Int32:
      return 4;
    default:
      return 8;
  }
}

double numberIn(XdfBytes& bytes, XdfValues values)
{
  switch (values)
  {
    case XdfValues::Float:
      return static_cast<double>(bytes.number<float>());
    case XdfValues::Int8:
      return bytes.number<std::int8_t>();
    case XdfValues::Int16:
      return bytes.number<std::int16_t>();
    case XdfValues::Int32:
      return bytes.number<std::int32_t>();
    case XdfValues::Int64:
      return static_cast<double>(bytes.number<std::int64_t>());
    default:
      return bytes.number<double>();
  }
}

std::string textOf(const pugi::xml_node& info, const char* name)
{
  return utf8Of(info.child(name).text().get());
}

/// Returns the number with which the text begins, in any locale.
double numberOf(const pugi::xml_node& info, const char* name, double otherwise)
{
  const std::string_view text = info.child(name).text().get();
  const std::string_view digits = text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  double number = otherwise;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return result.ec == std::errc() ? number : otherwise;
}

bool matches(const XdfStream& stream, const std::string& name)
{
  return name == stream.name || name == stream.type || (!stream.source.empty() && name == stream.source);
}

}  // namespace

std::optional<std::size_t> channelIn(const XdfStream& stream, const XdfChannel& channel)
{
  if (channel.index)
    return *channel.index < stream.channels ? channel.index : std::nullopt;
  const auto found = std::find(stream.labels.begin(), stream.labels.end(), channel.label);
  const auto index = static_cast<std::size_t>(found - stream.labels.begin());
  return found == stream.labels.end() || index >= stream.channels ? std::nullopt : std::make_optional(index);
}

XdfFile::XdfFile(InputFile file, const XdfMapping& mapping) : _path(file.path()), _mapping(mapping)
{
  XdfBytes bytes(std::move(file));
  try
  {
    if (bytes.text(4) != "XDF:")
      throw Error({_path, 0, {}}, "does not begin with XDF:, so it is no recording of the Lab Streaming Layer");
    _readChunks(bytes);
  }
  catch (const XdfDamage& damage)
  {
    _damage = "byte " + std::to_string(bytes.position()) + ": " + damage.what() +
              "; the rest is not read, and no sample behind it is used";
  }
  for (const XdfStreamMapping& one : _mapping)
    if (std::none_of(_streams.begin(), _streams.end(),
                     [&one](const XdfStream& stream) { return matches(stream, one.stream); }))
      throw Error({_path, 0, {}}, "has no stream " + quote(one.stream) + ", which the mapping names");
  _finish();
}

void XdfFile::_readChunks(XdfBytes& bytes)
{
  while (!bytes.atEnd())
  {
    const std::uint64_t length = bytes.length();
    if (length < tagSize)
      throw XdfDamage("a chunk is shorter than its tag");
    _readChunk(bytes, length - tagSize);
  }
}

void XdfFile::_readChunk(XdfBytes& bytes, std::uint64_t length)
{
  const auto tag = bytes.number<std::uint16_t>();
  if (length > std::numeric_limits<std::uint64_t>::max() - bytes.position())
    throw XdfDamage("a chunk is longer than any file");
  const std::uint64_t end = bytes.position() + length;
  if (tag == Samples && length >= idSize)
    _readSamples(bytes);
  else if (tag == StreamHeader && length >= idSize)
  {
    if (length - idSize > limits::largestXdfHeader)
      throw Error({_path, 0, {}}, "has a header of a stream that is larger than 1 MiB");
    const auto id = bytes.number<std::uint32_t>();
    _readHeader(bytes.text(static_cast<std::size_t>(length - idSize)), id);
  }
  else if (tag == ClockOffset && length == idSize + 2 * sizeof(double))
  {
    XdfStream* const stream = _find(bytes.number<std::uint32_t>());
    const auto time = bytes.number<double>();
    const auto value = bytes.number<double>();
    if (stream != nullptr && std::abs(time) < greatestTime && std::abs(value) < greatestTime)
    {
      _keep(2);
      stream->offsets.push_back({time, value});
    }
  }
  else if (tag < FileHeader || tag > StreamFooter)
    throw XdfDamage("there is no kind of chunk with the tag " + std::to_string(tag));
  if (bytes.position() > end)
    throw XdfDamage("a chunk holds more than its length says");
  bytes.skip(end - bytes.position());
}

XdfStream* XdfFile::_find(std::uint32_t id)
{
  const auto found = _indices.find(id);
  return found == _indices.end() ? nullptr : &_streams[found->second];
}

void XdfFile::_readHeader(const std::string& text, std::uint32_t id)
{
  if (_streams.size() == limits::mostXdfStreams)
    throw Error({_path, 0, {}}, "has more than " + std::to_string(limits::mostXdfStreams) + " streams");
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
  throwIfOutOfMemory(result);
  const pugi::xml_node info = document.child("info");
  if (!result || !info)
    throw XdfDamage("the header of stream " + std::to_string(id) + " is no XML with info at its top");
  XdfStream stream;
  stream.id = id;
  stream.name = textOf(info, "name");
  stream.type = textOf(info, "type");
  stream.source = textOf(info, "source_id");
  stream.valuesName = textOf(info, "channel_format");
  const double channels = numberOf(info, "channel_count", -1.);
  if (!(channels >= 0. && channels <= static_cast<double>(limits::mostXdfChannels)))
    throw Error({_path, 0, {}}, "stream " + quote(stream.name) + " has no number of channels, or more than " +
                                    std::to_string(limits::mostXdfChannels));
  stream.channels = static_cast<std::size_t>(channels);
  const double rate = numberOf(info, "nominal_srate", 0.);
  stream.rate = rate > 0. && rate <= greatestRate ? rate : 0.;
  const auto* const format = std::find_if(valuesNames.begin(), valuesNames.end(),
                                          [&stream](const ValuesName& one) { return one.name == stream.valuesName; });
  if (format == valuesNames.end())
    throw Error({_path, 0, {}},
                "stream " + quote(stream.name) + " has values of the unknown kind " + quote(stream.valuesName));
  stream.values = format->values;
  for (const pugi::xml_node channel : info.child("desc").child("channels").children("channel"))
    if (stream.labels.size() < stream.channels)
      stream.labels.push_back(textOf(channel, "label"));
  _choose(stream);
  if (!_indices.emplace(id, _streams.size()).second)
    throw XdfDamage("two streams have the number " + std::to_string(id));
  _streams.push_back(std::move(stream));
}

/// Decides what is kept of the stream.
void XdfFile::_choose(XdfStream& stream)
{
  for (const XdfStreamMapping& one : _mapping)
    if (matches(stream, one.stream))
      stream.mapping = &one;
  const bool areTexts = stream.values == XdfValues::Text && stream.channels > 0;
  const bool areMarkers = areTexts && stream.type.find("Marker") != std::string::npos;
  stream.areScopes =
      areTexts && (stream.mapping != nullptr ? stream.mapping->areScopes.value_or(areMarkers) : areMarkers);
  if (stream.areScopes)
    stream.kept.push_back(0);
  if (stream.mapping == nullptr)
    return;
  for (const XdfChannel& channel : stream.mapping->channels)
  {
    const std::optional<std::size_t> index = channelIn(stream, channel);
    if (!index)
      throw Error({_path, 0, {}}, "stream " + quote(stream.name) + " has no channel " +
                                      (channel.index ? std::to_string(*channel.index) : quote(channel.label)) +
                                      ", which the mapping names");
    if (stream.values == XdfValues::Text)
      throw Error({_path, 0, {}}, "stream " + quote(stream.name) + " has texts, so its channels cannot be readings");
    stream.kept.push_back(*index);
  }
  std::sort(stream.kept.begin(), stream.kept.end());
  stream.kept.erase(std::unique(stream.kept.begin(), stream.kept.end()), stream.kept.end());
}

void XdfFile::_readSamples(XdfBytes& bytes)
{
  const auto id = bytes.number<std::uint32_t>();
  XdfStream* const stream = _find(id);
  if (stream == nullptr)
    throw XdfDamage("samples of stream " + std::to_string(id) + " come before its header");
  const std::uint64_t count = bytes.length();
  for (std::uint64_t i = 0; i < count; ++i)
    _readSample(bytes, *stream);
}

void XdfFile::_readSample(XdfBytes& bytes, XdfStream& stream)
{
  const auto timeSize = bytes.number<std::uint8_t>();
  if (timeSize != 0 && timeSize != sizeof(double))
    throw XdfDamage("expected a time of 0 or 8 bytes, found " + std::to_string(timeSize));
  double time = stream.last + (stream.rate > 0. ? 1. / stream.rate : 0.);
  if (timeSize != 0)
    time = bytes.number<double>();
  if (!(std::abs(time) < greatestTime))
    throw XdfDamage("a sample of stream " + quote(stream.name) + " has no time in seconds");
  if (stream.samples == 0)
    stream.first = time;
  stream.last = time;

  if (!stream.isKept())
  {
    if (stream.values == XdfValues::Text)
      for (std::size_t i = 0; i < stream.channels; ++i)
        bytes.skip(bytes.length());
    else
      bytes.skip(sizeOf(stream.values) * stream.channels);
  }
  else
  {
    std::size_t next = 0;
    const std::size_t before = stream.numbers.size() + stream.texts.size();
    try
    {
      for (std::size_t i = 0; i < stream.channels; ++i)
      {
        const bool isKept = next < stream.kept.size() && stream.kept[next] == i;
        _readValue(bytes, stream, isKept);
        next += isKept ? 1 : 0;
      }
    }
    catch (const XdfDamage&)
    {
      if (stream.values == XdfValues::Text)
        stream.texts.resize(before);
      else
        stream.numbers.resize(before);
      throw;
    }
    _keep(1);
    stream.times.push_back(time);
  }
  ++stream.samples;
}

void XdfFile::_readValue(XdfBytes& bytes, XdfStream& stream, bool isKept)
{
  const bool isText = stream.values == XdfValues::Text;
  const std::uint64_t length = isText ? bytes.length() : sizeOf(stream.values);
  if (!isKept)
    bytes.skip(length);
  else if (!isText)
  {
    _keep(1);
    stream.numbers.push_back(numberIn(bytes, stream.values));
  }
  else
  {
    if (length > limits::longestXdfText)
      throw Error({_path, 0, {}}, "a text of stream " + quote(stream.name) + " is longer than " +
                                      std::to_string(limits::longestXdfText) + " bytes");
    _keep((sizeof(std::string) + static_cast<std::size_t>(length)) / sizeof(double));
    stream.texts.push_back(utf8Of(bytes.text(static_cast<std::size_t>(length))));
  }
}

/// Counts in units of 8 bytes.
void XdfFile::_keep(std::size_t count)
{
  _values += count;
  if (_values > limits::mostXdfValues)
    throw Error({_path, 0, {}}, "has more than " + std::to_string(limits::mostXdfValues) +
                                    " values in the streams that are read: name fewer channels in the mapping");
}

/// Moves all times to the recorder's clock.
void XdfFile::_finish()
{
  for (XdfStream& stream : _streams)
  {
    const std::vector<XdfClockSegment> segments = clockSegmentsOf(stream.offsets);
    stream.segments = segments.size();
    synchronise(stream.times, segments);
    removeJitter(stream.times, stream.rate);
  }
}

}  // namespace KV::recordings
