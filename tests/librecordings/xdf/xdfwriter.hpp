#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

/// \file
/// Recordings of the Lab Streaming Layer of our making.

namespace support
{

template <typename Number>
std::string bytesOf(Number number)
{
  std::string bytes(sizeof(Number), '\0');
  std::memcpy(bytes.data(), &number, sizeof(Number));
  return bytes;
}

/// A length in 1, 4 or 8 bytes.
inline std::string xdfLength(std::uint64_t length, int size = 4)
{
  if (size == 1)
    return "\x01" + bytesOf(static_cast<std::uint8_t>(length));
  return size == 4 ? "\x04" + bytesOf(static_cast<std::uint32_t>(length)) : "\x08" + bytesOf(length);
}

inline std::string xdfChunk(std::uint16_t tag, const std::string& content, int size = 4)
{
  return xdfLength(content.size() + 2, size) + bytesOf(tag) + content;
}

inline std::string xdfBegin()
{
  return "XDF:" + xdfChunk(1, "<?xml version=\"1.0\"?><info><version>1.0</version></info>", 1);
}

inline std::string xdfHeader(std::uint32_t id, const std::string& name, const std::string& type,
                             const std::string& format, double rate, const std::vector<std::string>& labels)
{
  std::string channels;
  for (const std::string& label : labels)
    channels += "<channel><label>" + label + "</label></channel>";
  return xdfChunk(2, bytesOf(id) + "<?xml version=\"1.0\"?><info><name>" + name + "</name><type>" + type +
                         "</type><channel_count>" + std::to_string(labels.size()) + "</channel_count><nominal_srate>" +
                         std::to_string(rate) + "</nominal_srate><channel_format>" + format +
                         "</channel_format><source_id>source of " + name + "</source_id><desc><channels>" + channels +
                         "</channels></desc></info>");
}

inline std::string xdfTime(double time)
{
  return "\x08" + bytesOf(time);
}

inline std::string xdfWithoutTime()
{
  return std::string(1, '\0');
}

template <typename Number>
std::string xdfNumbers(const std::vector<Number>& numbers)
{
  std::string bytes;
  for (const Number number : numbers)
    bytes += bytesOf(number);
  return bytes;
}

inline std::string xdfText(const std::string& text)
{
  return xdfLength(text.size(), 1) + text;
}

inline std::string xdfSamples(std::uint32_t id, const std::vector<std::string>& samples)
{
  std::string content = bytesOf(id) + xdfLength(samples.size(), 1);
  for (const std::string& sample : samples)
    content += sample;
  return xdfChunk(3, content);
}

inline std::string xdfClockOffset(std::uint32_t id, double time, double value)
{
  return xdfChunk(4, bytesOf(id) + bytesOf(time) + bytesOf(value));
}

}  // namespace support
