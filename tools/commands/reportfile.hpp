#pragma once

#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/report.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the present time, or that of SOURCE_DATE_EPOCH, which reproducible builds set.
std::string dateOfMaking();

/// The report of one session, in a file that replaces its target when it is complete.
class ReportFile
{
public:
  /// \throws OutputRefused if the check refuses the file.
  /// \throws WriteError if the file cannot be made.
  ReportFile(const std::string& target, session::OutputCheck& check) : _file(target, check) {}

  /// Adds the page's parts besides the session, before commit(); returns warnings on labels that it does not show.
  std::vector<std::string> add(const session::ReportAdditions& additions) { return _report.add(additions); }

  /// Returns the observer of the session.
  session::SessionObserver& observer() { return _report; }

  /// Writes the page, with these messages of the command, and replaces the target by it.
  ///
  /// \param format        of the inputs; empty: the page shows the detected one
  /// \param givenOptions  the user's options on reading, as typed
  /// \throws WriteError if that fails.
  void commit(const session::SessionInputs& session, const std::vector<std::string>& messages,
              const std::string& format, const std::vector<std::string>& givenOptions);

  /// Returns the report's entry in an index, after commit().
  session::ReportOverview overview() const { return _report.overview(); }

private:
  session::ReplacedFile _file;
  session::Report _report;
};

}  // namespace KV::tools
