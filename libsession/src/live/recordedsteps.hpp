#pragma once

#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/session/outputstream.hpp>

#include <string>

namespace KV::session
{

/// Writes steps as JSON Lines to an opened file. The first error ends the recording, and the session goes on.
class RecordedSteps
{
public:
  /// The descriptor stays open as long as the object exists; errors have the name.
  RecordedSteps(int descriptor, const std::string& name) : _stream(descriptor, name), _writer(_stream) {}

  void write(const recordings::Step& step);
  void flush();

  /// Returns the error that ended the recording; empty if it goes on.
  const std::string& error() const { return _error; }

private:
  template <typename Use>
  void _use(Use&& use);

  OutputStream _stream;
  recordings::JsonLinesWriter _writer;
  std::string _error;
};

}  // namespace KV::session
