#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/session/exportformat.hpp>

namespace KV::session
{

namespace
{

/// Writes the steps of a recording in the own format.
class RecordingExport : public Exporter
{
public:
  explicit RecordingExport(std::ostream& stream) : _writer(stream) {}

  void stepBegins(const recordings::Step& step) override { _writer.write(step); }

private:
  recordings::JsonLinesWriter _writer;
};

}  // namespace

ExportFormat recordingExport()
{
  return {"recording", "the recording itself in the own format, JSON Lines", "times in a recording never go backwards",
          [](std::ostream& stream) { return std::make_unique<RecordingExport>(stream); }};
}

}  // namespace KV::session
