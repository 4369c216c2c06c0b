#pragma once

#include "recording/xdfmapping.hpp"
#include "xdf/xdfbytes.hpp"
#include "xdf/xdfclock.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The values that a channel may hold.
enum class XdfValues
{
  Float,
  Double,
  Int8,
  Int16,
  Int32,
  Int64,
  Text
};

/// A stream of a recording.
struct XdfStream
{
  std::uint32_t id = 0;
  std::string name;
  std::string type;
  std::string source;
  std::size_t channels = 0;
  std::vector<std::string> labels;  // of the channels; fewer if the header has fewer
  double rate = 0.;                 // [Hz] nominal; 0 for an irregular one
  XdfValues values = XdfValues::Float;
  std::string valuesName;
  std::size_t samples = 0;
  double first = 0.;  // [s] time of the first sample, on its own clock
  double last = 0.;   // [s]
  std::vector<XdfClockOffset> offsets;
  std::size_t segments = 0;  // of its clock

  const XdfStreamMapping* mapping = nullptr;
  bool areScopes = false;
  std::vector<std::size_t> kept;   // indices of the channels that are kept
  std::vector<double> times;       // [s] of the samples, if some are kept; when all is read, on the recorder's clock
  std::vector<double> numbers;     // of the kept channels, one sample after the other
  std::vector<std::string> texts;  // the same, of texts

  bool isKept() const { return areScopes || !kept.empty(); }
};

/// Reads all of a recording of the Lab Streaming Layer, and keeps the channels that the mapping names, and markers.
class XdfFile
{
public:
  /// The mapping must outlive the file.
  ///
  /// \throws Error if it is no such recording, is beyond a limit, or does not have what the mapping names.
  XdfFile(InputFile file, const XdfMapping& mapping);

  const std::string& path() const { return _path; }

  /// In the order of the file; their times are on the recorder's clock, without jitter.
  const std::vector<XdfStream>& streams() const { return _streams; }

  /// Says why the file was not read to its end, if so.
  const std::string& damage() const { return _damage; }

private:
  void _readChunks(XdfBytes& bytes);
  void _readChunk(XdfBytes& bytes, std::uint64_t length);
  void _readHeader(const std::string& text, std::uint32_t id);
  void _readSamples(XdfBytes& bytes);
  void _readSample(XdfBytes& bytes, XdfStream& stream);
  void _readValue(XdfBytes& bytes, XdfStream& stream, bool isKept);
  void _keep(std::size_t count);
  void _choose(XdfStream& stream);
  void _finish();
  XdfStream* _find(std::uint32_t id);

  std::string _path;
  const XdfMapping& _mapping;
  std::vector<XdfStream> _streams;
  std::map<std::uint32_t, std::size_t> _indices;
  std::size_t _values = 0;  // that are kept
  std::string _damage;
};

/// Returns the index of the channel in the stream, if it is there.
std::optional<std::size_t> channelIn(const XdfStream& stream, const XdfChannel& channel);

}  // namespace KV::recordings
