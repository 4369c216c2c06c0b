#pragma once

#include "study/database.hpp"
#include "study/filedigest.hpp"

#include <skeigiot/session/player.hpp>
#include <skeigiot/session/studyplan.hpp>
#include <skeigiot/session/summary.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace KV::session
{

/// One input as the results note it.
struct NotedInput
{
  std::string kind;  ///< "recording" or "labels"
  std::string path;  ///< relative to the folder of the study
  Duration offset{0};
  std::string format;
  FileDigest digest;
};

/// The facts about a session besides its estimates.
struct NotedSession
{
  std::string status;  ///< "complete", "cut short", "failed" or "left out"
  std::string error;
  std::string plan;  ///< digest of the plan of the session
  std::vector<NotedInput> inputs;
  Outcome outcome;
};

/// Writes sessions to the results, one after the other, each in one transaction. Rows of updates and forces wait in
/// temporary tables until their session ends.
class SessionRows
{
public:
  /// Opens one more connection to the result file, which has its tables.
  SessionRows(const std::string& results, bool keepsUpdates, bool keepsForces);

  /// Begins a session, and forgets the last one if that was not written. Returns its observer, valid until the next.
  SessionObserver& begin();

  /// Writes the session in place of older results of it. One thread at a time.
  void write(const StudySession& session, const NotedSession& noted);

private:
  class Rows;

  void _insertSession(const StudySession& session, const NotedSession& noted);
  void _insertSummaries(const StudySession& session);
  void _insertWarnings(const StudySession& session, const NotedSession& noted);

  Database _database;
  bool _keepsUpdates;
  bool _keepsForces;
  std::shared_ptr<Rows> _rows;
};

/// Removes all rows of a session.
void removeSession(Database& database, const std::string& session);

}  // namespace KV::session
