#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/scopespan.hpp>
#include <skeigiot/session/session.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KV::session
{

/// How a recording is played.
struct SKEIGIOT_API PlayerOptions
{
  bool skipBad = false;                ///< go on behind a line that cannot be used
  Forces forces = Forces::Unwatched;   ///< whether observers are told of each force, which takes time
  std::vector<ScopeSpan> scopes = {};  ///< stretches that are judged
  Cycle cycle = {};                    ///< how often persons are updated
  bool estimates = true;               ///< false: the recording is only read; observers are told of its steps alone
};

/// How far a recording was played.
struct SKEIGIOT_API Progress
{
  double share = 0.;   ///< of the file, in [0, 1]
  Duration length{0};  ///< time since its first step
};

/// What became of a recording that was played.
struct SKEIGIOT_API Outcome
{
  bool opened = false;                       ///< false: `error` says why not
  bool stopped = false;                      ///< the caller wanted no more of it
  std::vector<std::string> description;      ///< how signs, units and rate were read
  recordings::Columns columns;               ///< which columns were read
  std::vector<std::string> warnings;         ///< of the reader, the first few
  std::size_t moreWarnings = 0;              ///< how many there were besides
  std::size_t badLines = 0;                  ///< lines that were skipped
  std::string firstBadLine;                  ///< what is wrong with the first of them
  std::string leftOut;                       ///< on readings that are not finite; empty if there were none
  std::vector<std::string> libraryWarnings;  ///< what the estimate had to say, a line each
  boost::optional<recordings::Error> error;  ///< what ended the recording before its end
  Duration length{0};                        ///< how much of it was played

  /// Returns the warnings of the reader, and how many more there were, a line each.
  std::vector<std::string> warningLines() const;

  /// Says how many lines were skipped, and what is wrong with the first; empty if there were none.
  std::string skippedText() const;
};

/// Plays recordings: opens one, reads it step by step through a session, and collects what there is to say of it.
///
/// Memory does not grow with the recording. Prints nothing.
///
/// \par Thread safety
///   Not synchronised. Players of several threads do not disturb each other: each session sets the clock of its thread.
class SKEIGIOT_API Player
{
public:
  using Open = std::function<std::unique_ptr<recordings::Reader>()>;

  /// Called after each step, and if the recording cannot be opened; returns whether to go on. What it throws ends the
  /// playing, and reaches the caller.
  using GoOn = std::function<bool(const Progress&)>;

  explicit Player(PlayerOptions options, GoOn goOn = {});

  /// Plays one recording; the observers are told of it, and must outlive the call.
  ///
  /// A recording that cannot be read, or not to its end, is no exception: the outcome says so, and what was good is
  /// played.
  Outcome play(const Open& open, const std::vector<SessionObserver*>& observers) const;

private:
  PlayerOptions _options;
  GoOn _goOn;
};

}  // namespace KV::session
