#pragma once

#include "study/database.hpp"
#include "study/resultschema.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/studyresults.hpp>

#include <string>

namespace replaytests
{

/// A result file with rows of the test's own.
class WrittenResults
{
public:
  WrittenResults() : _path(_folder.path("results.sqlite"))
  {
    KV::session::Database database(_path, KV::session::Database::Mode::Write);
    KV::session::makeResultTables(database);
  }

  void run(const std::string& sql) const { KV::session::Database(_path, KV::session::Database::Mode::Write).run(sql); }

  void addSession(const std::string& name, const std::string& participant, const std::string& condition,
                  const std::string& status = "complete") const
  {
    run("INSERT INTO sessions (session, participant, condition, status, error, length, dated, persons, warnings, "
        "bad_lines)"
        " VALUES ('" +
        name + "', '" + participant + "', '" + condition + "', '" + status + "', '', 10, 0, 0, 0, 0)");
  }

  void addPerson(const std::string& session, int person, const std::string& participant,
                 const std::string& role = "") const
  {
    run("INSERT INTO persons VALUES ('" + session + "', " + std::to_string(person) + ", '', '" + participant + "', '" +
        role + "', 1); UPDATE sessions SET persons = persons + 1 WHERE session = '" + session + "'");
  }

  /// Adds the summary of a scope; `valence` may be NULL.
  void addSummary(const std::string& session, int person, int number, const std::string& scope,
                  const std::string& valence, const std::string& verdict = "neutral") const
  {
    run("INSERT INTO summaries (session, person, number, scope, start, stop, verdict, valence, attention, seen) VALUES "
        "('" +
        session + "', " + std::to_string(person) + ", " + std::to_string(number) + ", '" + scope + "', 0, 10, '" +
        verdict + "', " + valence + ", 0.5, 1)");
  }

  /// Adds a session of one person with the summary of the whole recording.
  void add(const std::string& participant, const std::string& condition, const std::string& valence,
           const std::string& status = "complete") const
  {
    const std::string name = std::string(participant).append("/").append(condition);
    addSession(name, participant, condition, status);
    addPerson(name, 1, participant);
    addSummary(name, 1, 1, "whole recording", valence);
  }

  const std::string& path() const { return _path; }

private:
  TemporaryFolder _folder;
  std::string _path;
};

}  // namespace replaytests
