#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/session/exportformat.hpp>

namespace KV::session
{

namespace
{

/// Writes the steps of a recording in the project's own format.
class RecordingExport : public Exporter
{
public:
  explicit RecordingExport(std::ostream& stream) : _writer(stream) {}

  void recordingDated(bool isDated) override { _isDated = isDated; }

  void stepBegins(const recordings::Step& step) override
  {
    if (_isDated || _anyWritten)
      _writer.write(step);
    else
      _writeUndated(step);
    _anyWritten = true;
  }

private:
  void _writeUndated(recordings::Step step)
  {
    step.isDated = false;
    _writer.write(step);
  }

  recordings::JsonLinesWriter _writer;
  bool _isDated = true;
  bool _anyWritten = false;
};

}  // namespace

ExportFormat recordingExport()
{
  return {"recording", "the recording itself in the own format, JSON Lines", "times in a recording never go backwards",
          [](std::ostream& stream) { return std::make_unique<RecordingExport>(stream); }};
}

}  // namespace KV::session
