#include <skeigiot/session/exports.hpp>

#include "export/spillfile.hpp"

#include <skeigiot/session/replacedfile.hpp>

#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

/// The folder of temporary files: on the disk of the target, which needs room for it all, if the target is a file.
std::string folderFor(const std::string& target)
{
  std::error_code error;
  const bool isFile = target != "-" && (!fs::exists(target, error) || fs::is_regular_file(target, error));
  if (!isFile)
    return fs::temp_directory_path().string();
  const fs::path folder = fs::weakly_canonical(target, error).parent_path();
  return error || folder.empty() ? "." : folder.string();
}

template <typename File>
std::vector<SessionObserver*> exportersOf(const std::vector<File>& files)
{
  std::vector<SessionObserver*> exporters;
  exporters.reserve(files.size());
  for (const File& file : files)
    exporters.push_back(file.exporter.get());
  return exporters;
}

}  // namespace

struct Exports::File
{
  ExportFormat format;
  std::shared_ptr<SpillStore> spilled;
  std::unique_ptr<ReplacedFile> file;
  std::unique_ptr<Exporter> exporter;
};

struct Exports::Spilled::File
{
  std::unique_ptr<SpillFile> file;
  std::unique_ptr<Exporter> exporter;
};

Exports::Spilled::Spilled() = default;
Exports::Spilled::~Spilled() = default;

std::vector<SessionObserver*> Exports::Spilled::observers() const
{
  return exportersOf(_files);
}

void Exports::Spilled::endSession(const std::string& error)
{
  for (const File& file : _files)
    file.exporter->endSession(error);
}

Exports::Exports() = default;
Exports::~Exports() = default;

void Exports::add(const std::string& format, const std::string& target, OutputCheck& check)
{
  add(exportFormat(format), target, check);
}

void Exports::add(const ExportFormat& format, const std::string& target, OutputCheck& check)
{
  File file{format, std::make_shared<SpillStore>(folderFor(target)), std::make_unique<ReplacedFile>(target, check),
            nullptr};
  file.exporter = file.format.make(file.file->stream());
  file.exporter->writeHeader();
  _files.push_back(std::move(file));
}

bool Exports::empty() const
{
  return _files.empty();
}

void Exports::beginSession(const SessionName& session)
{
  for (const File& file : _files)
    file.exporter->beginSession(session);
}

void Exports::endSession(const std::string& error)
{
  for (const File& file : _files)
    file.exporter->endSession(error);
}

std::vector<SessionObserver*> Exports::observers() const
{
  return exportersOf(_files);
}

std::unique_ptr<Exports::Spilled> Exports::spill(const SessionName& session) const
{
  std::unique_ptr<Spilled> spilled(new Spilled);
  for (const File& file : _files)
  {
    Spilled::File part{std::make_unique<SpillFile>(file.spilled), nullptr};
    part.exporter = file.format.make(part.file->stream());
    part.exporter->beginSession(session);
    spilled->_files.push_back(std::move(part));
  }
  return spilled;
}

void Exports::append(Spilled& spilled)
{
  for (std::size_t i = 0; i < _files.size(); ++i)
    spilled._files[i].file->copyTo(_files[i].file->stream());
}

void Exports::commit()
{
  for (const File& file : _files)
    file.file->commit();
}

}  // namespace KV::session
