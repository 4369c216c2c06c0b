#include <skeigiot/session/exportwriters.hpp>

#include "export/csvexport.hpp"
#include "export/jsonlexport.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>

namespace KV::session
{

namespace
{

/// Writes the steps of a recording in the own format.
class RecordingExport : public SessionObserver
{
public:
  explicit RecordingExport(std::ostream& stream) : _writer(stream) {}

  void stepBegins(const recordings::Step& entry) override { _writer.write(entry); }

private:
  recordings::JsonLinesWriter _writer;
};

}  // namespace

void ExportWriters::addCsv(std::ostream& stream, Header header)
{
  _updates.push_back(std::make_unique<CsvExport>(stream));
  if (header == Header::Written)
    CsvExport::writeHeader(stream);
}

void ExportWriters::addJsonl(std::ostream& stream)
{
  _updates.push_back(std::make_unique<JsonlExport>(stream));
}

void ExportWriters::addRecording(std::ostream& stream)
{
  _recordings.push_back(std::make_unique<RecordingExport>(stream));
}

void ExportWriters::beginRecording(int number)
{
  for (const auto& updates : _updates)
    updates->beginRecording(number);
}

std::vector<SessionObserver*> ExportWriters::observers() const
{
  std::vector<SessionObserver*> observers = _others;
  for (const auto& updates : _updates)
    observers.push_back(updates.get());
  for (const auto& recording : _recordings)
    observers.push_back(recording.get());
  return observers;
}

}  // namespace KV::session
