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

/// The inputs and options of a replay.
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
  std::int32_t number = 1;                     ///< of the session, in exports
};

/// The result of a replay.
struct ReplayOutcome
{
  std::string name;
  ReplayTables tables;
  KV::session::Duration length{0};
  std::string summary;  ///< as comma-separated values; empty if the session was only played
  std::vector<std::string> description;
  std::vector<std::string> learned;
  std::vector<std::string> warnings;
  boost::optional<KV::recordings::Error> error;  ///< why the recording ended early
  std::string hint;                              ///< follows its message: the keyword that helps
};

/// Plays one session for these observers, without the interpreter lock; the tables stay empty.
///
/// \param check called for each step; ends the playing by throwing
ReplayOutcome play(const ReplayRequest& request, const std::vector<KV::session::SessionObserver*>& observers,
                   const std::function<void()>& check);

/// Replays one session as the command does, without the interpreter lock.
///
/// \param check called for each step; ends the replay by throwing
ReplayOutcome replay(const ReplayRequest& request, const std::function<void()>& check);

}  // namespace binding
