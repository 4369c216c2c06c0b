#pragma once

#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/reportindex.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

/// A folder with the report of each session, and a page with links to them.
class ReportFolder
{
public:
  /// Makes the folder if it is not there.
  ///
  /// \throws OutputRefused if the check refuses one of the pages.
  /// \throws WriteError if the folder cannot be made.
  ReportFolder(const std::string& folder, const std::vector<session::SessionInputs>& sessions,
               session::OutputCheck& check);

  /// Returns the path of the report of the session with this number, from 0.
  const std::string& pageOf(std::size_t session) const { return _pages[session]; }

  /// Adds the next session to the index; `hasPage` is true if its report was written.
  void add(session::IndexedRecording recording, bool hasPage);

  /// Writes the index.
  ///
  /// \throws WriteError if that fails.
  void commit() const;

private:
  std::string _index;
  std::vector<std::string> _pages;  // by session
  std::vector<session::IndexedRecording> _recordings;
};

}  // namespace KV::tools
