#pragma once

#include "replayrecord.hpp"

#include <skeigiot/recordings/table.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/scopespan.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace binding
{

/// What to replay, and how.
struct ReplayRequest
{
  KV::session::SessionInputs session;
  std::map<std::string, KV::recordings::Table> frames;  ///< by their names in the session; all others are paths
  std::string format;                                   ///< of the files; empty: detected
  KV::recordings::ReadingOptions reading;
  bool skipBad = false;
  bool explain = false;
  KV::session::Cycle cycle;
  std::vector<KV::session::ScopeSpan> scopes;  ///< besides the whole recording
  std::int32_t number = 1;                     ///< of the session, as exports have it
};

/// What came of it.
struct ReplayOutcome
{
  std::string name;
  ReplayTables tables;
  KV::session::Duration length{0};
  std::string summary;  ///< as comma-separated values; empty if it was only played
  std::vector<std::string> description;
  std::vector<std::string> learned;
  std::vector<std::string> warnings;
  boost::optional<KV::recordings::Error> error;  ///< what ended the recording before its end
  std::string hint;                              ///< goes on behind its message: which keyword helps
};

/// Plays one session for these observers, without the interpreter lock; the tables stay empty.
///
/// \param check called for each step; what it throws ends the playing
ReplayOutcome play(const ReplayRequest& request, const std::vector<KV::session::SessionObserver*>& observers,
                   const std::function<void()>& check);

/// Replays one session as the command does, without the interpreter lock.
///
/// \param check called for each step; what it throws ends the replay
ReplayOutcome replay(const ReplayRequest& request, const std::function<void()>& check);

}  // namespace binding
