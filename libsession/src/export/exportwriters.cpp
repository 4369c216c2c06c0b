#include "exportwriters.hpp"

#include "csvexport.hpp"
#include "jsonlexport.hpp"

namespace tools
{

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
  _recordings.push_back(std::make_unique<JsonLinesWriter>(stream));
}

void ExportWriters::beginRecording(int number)
{
  for (const auto& updates : _updates)
    updates->beginRecording(number);
}

void ExportWriters::write(const RecordingEntry& entry)
{
  for (const auto& recording : _recordings)
    recording->write(entry);
}

std::vector<SessionObserver*> ExportWriters::observers() const
{
  std::vector<SessionObserver*> observers = _others;
  for (const auto& updates : _updates)
    observers.push_back(updates.get());
  return observers;
}

}  // namespace tools
