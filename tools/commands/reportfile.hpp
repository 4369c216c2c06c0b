#pragma once

#include <skeigiot/session/replacedfile.hpp>
#include <skeigiot/session/report.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// The report of one session, in a file that takes its place when it is complete.
class ReportFile
{
public:
  /// \throws OutputRefused if the check refuses the file.
  /// \throws WriteError if the file cannot be made.
  ReportFile(const std::string& target, session::OutputCheck& check) : _file(target, check) {}

  /// Adds what the page shows beside the session, before commit(); returns warnings on labels that it does not show.
  std::vector<std::string> add(const session::ReportAdditions& additions) { return _report.add(additions); }

  /// Returns what is to watch the session.
  session::SessionObserver& observer() { return _report; }

  /// Writes the page, with these messages of the command, and puts it in its place.
  ///
  /// \param format        that the inputs were read as; empty: the page says the one that is found out
  /// \param givenOptions  how the user wanted it read, as typed
  /// \throws WriteError if that fails.
  void commit(const session::SessionInputs& session, const std::vector<std::string>& messages,
              const std::string& format, const std::vector<std::string>& givenOptions);

  /// Returns what an index shows of the report, after commit().
  session::ReportOverview overview() const { return _report.overview(); }

private:
  session::ReplacedFile _file;
  session::Report _report;
};

}  // namespace KV::tools
