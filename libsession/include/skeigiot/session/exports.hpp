#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/exportwriters.hpp>
#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/spillfile.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace KV::session
{

/// What one session exports while others that stand before it are not written yet.
class SKEIGIOT_API SpilledExports
{
public:
  ExportWriters& writers() { return _writers; }

private:
  friend class Exports;

  std::vector<std::unique_ptr<SpillFile>> _files;  // as those of Exports
  ExportWriters _writers;
};

/// The files that a replay writes, none of which is in its place before commit().
class SKEIGIOT_API Exports
{
public:
  /// Exports every update to a file of comma-separated values.
  void addCsv(const std::string& target) { _add(Form::Csv, target); }
  /// Exports every update to a file of JSON Lines.
  void addJsonl(const std::string& target) { _add(Form::Jsonl, target); }
  /// Writes the recording itself, in the own format.
  void addRecording(const std::string& target) { _add(Form::Recording, target); }

  bool empty() const { return _files.empty(); }

  /// Returns what writes to the files directly.
  ExportWriters& writers() { return _writers; }

  /// Returns what writes the session with this number to temporary files; may be called from several threads.
  ///
  /// \throws WriteError if there can be no such files.
  std::unique_ptr<SpilledExports> spill(int number) const;

  /// Writes to the files what a session spilled.
  void append(SpilledExports& spilled);

  /// Puts all files in their places.
  void commit();

private:
  enum class Form
  {
    Csv,
    Jsonl,
    Recording
  };

  struct File
  {
    Form form;
    std::string folder;  // for temporary files
    std::unique_ptr<ReplacedFile> file;
  };

  void _add(Form form, const std::string& target);
  static void _addWriter(ExportWriters& writers, Form form, std::ostream& stream, ExportWriters::Header header);

  std::vector<File> _files;
  ExportWriters _writers;
};

}  // namespace KV::session
