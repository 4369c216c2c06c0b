#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/step.hpp>

#include <iosfwd>

namespace KV::recordings
{

/// Writes a recording in the project's own format, one line for each step; JsonLinesReader reads the same back, to the
/// last bit of every number (of NaN, only that it is none).
class SKEIGIOT_API JsonLinesWriter
{
public:
  /// Writes to `stream`, which must outlive the writer.
  explicit JsonLinesWriter(std::ostream& stream) : _stream(stream) {}

  /// Writes one line; the state of the stream shows whether that worked.
  void write(const Step& entry);

private:
  std::ostream& _stream;
};

}  // namespace KV::recordings
