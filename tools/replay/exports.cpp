#include "exports.hpp"

#include "csvexport.hpp"
#include "jsonlexport.hpp"

namespace tools
{

void Exports::addCsv(const std::string& target)
{
  _updates.push_back(std::make_unique<CsvExport>(_open(target)));
}

void Exports::addJsonl(const std::string& target)
{
  _updates.push_back(std::make_unique<JsonlExport>(_open(target)));
}

void Exports::addRecording(const std::string& target)
{
  _recordings.push_back(std::make_unique<JsonLinesWriter>(_open(target)));
}

void Exports::beginRecording(int number)
{
  for (const auto& updates : _updates)
    updates->beginRecording(number);
}

void Exports::write(const RecordingEntry& entry)
{
  for (const auto& recording : _recordings)
    recording->write(entry);
}

std::vector<SessionObserver*> Exports::observers() const
{
  std::vector<SessionObserver*> observers;
  for (const auto& updates : _updates)
    observers.push_back(updates.get());
  return observers;
}

void Exports::commit()
{
  for (const auto& file : _files)
    file->commit();
}

std::ostream& Exports::_open(const std::string& target)
{
  _files.push_back(std::make_unique<ReplacedFile>(target));
  return _files.back()->stream();
}

}  // namespace tools
