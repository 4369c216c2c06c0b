#pragma once

#include "study/database.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/study.hpp>
#include <skeigiot/session/studyplan.hpp>

#include <filesystem>
#include <string>

namespace replaytests
{

/// A folder with recordings and a study file of the test's own.
class StudyFolder
{
public:
  /// Writes a file in any folder below, in place of an older one.
  void add(const std::string& name, const std::string& content) const
  {
    std::filesystem::create_directories(std::filesystem::path(_folder.path(name)).parent_path());
    _folder.write(name, content);
  }

  void remove(const std::string& name) const { std::filesystem::remove(path(name)); }

  /// Reads a study file with this text behind its head.
  KV::session::Study study(const std::string& text) const
  {
    return KV::session::readStudy(_folder.write("study.toml", "[study]\nversion = 1\n" + text));
  }

  std::string path(const std::string& name) const { return _folder.path(name); }

private:
  TemporaryFolder _folder;
};

/// Returns the rows of a query on a database: values with bars between them, a line for each row. NULL is "-".
inline std::string rowsOf(const std::string& path, const std::string& query)
{
  KV::session::Database database(path, KV::session::Database::Mode::Read);
  KV::session::Statement rows(database, query);
  std::string text;
  while (rows.step())
    for (int i = 0; i < rows.columns(); ++i)
      text += (rows.isNull(i) ? "-" : rows.text(i)) + (i + 1 < rows.columns() ? "|" : "\n");
  return text;
}

}  // namespace replaytests
