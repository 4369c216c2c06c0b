#include <skeigiot/session/exports.hpp>

#include <cstddef>
#include <filesystem>
#include <system_error>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

/// Where temporary files for the target go: to the disk that has to take all of it anyway, if it is a file.
std::string folderFor(const std::string& target)
{
  std::error_code error;
  const bool isFile = target != "-" && (!fs::exists(target, error) || fs::is_regular_file(target, error));
  if (!isFile)
    return fs::temp_directory_path().string();
  const fs::path folder = fs::weakly_canonical(target, error).parent_path();
  return error || folder.empty() ? "." : folder.string();
}

}  // namespace

std::unique_ptr<SpilledExports> Exports::spill(int number) const
{
  auto spilled = std::make_unique<SpilledExports>();
  for (const File& file : _files)
  {
    spilled->_files.push_back(std::make_unique<SpillFile>(file.folder));
    _addWriter(spilled->_writers, file.form, spilled->_files.back()->stream(), ExportWriters::Header::LeftOut);
  }
  spilled->_writers.beginRecording(number);
  return spilled;
}

void Exports::append(SpilledExports& spilled)
{
  for (std::size_t i = 0; i < _files.size(); ++i)
    spilled._files[i]->copyTo(_files[i].file->stream());
}

void Exports::commit()
{
  for (const File& file : _files)
    file.file->commit();
}

void Exports::_add(Form form, const std::string& target)
{
  _files.push_back({form, folderFor(target), std::make_unique<ReplacedFile>(target)});
  _addWriter(_writers, form, _files.back().file->stream(), ExportWriters::Header::Written);
}

void Exports::_addWriter(ExportWriters& writers, Form form, std::ostream& stream, ExportWriters::Header header)
{
  switch (form)
  {
    case Form::Csv:
      return writers.addCsv(stream, header);
    case Form::Jsonl:
      return writers.addJsonl(stream);
    case Form::Recording:
      return writers.addRecording(stream);
  }
}

}  // namespace KV::session
