#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/readingnotes.hpp>
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
  std::vector<ScopeSpan> scopes = {};  ///< stretches that are judged
  Cycle cycle = {};                    ///< how often persons are updated
  bool estimates = true;               ///< false: the recording is only read; observers receive its steps only
};

/// How far a recording was played.
struct SKEIGIOT_API Progress
{
  double share = 0.;   ///< of the file, in [0, 1]
  Duration length{0};  ///< time since its first step
};

/// The result of playing a recording.
struct SKEIGIOT_API Outcome : ReadingNotes
{
  bool opened = false;                       ///< false: `error` says why not
  bool stopped = false;                      ///< the caller wanted no more of the recording
  std::vector<std::string> description;      ///< how signs, units and rate were read
  std::vector<std::string> learned;          ///< what was learned of the faces at rest, see recordings::Reader
  recordings::Columns columns;               ///< which columns were read
  std::string leftOut;                       ///< on readings that are not finite, or empty
  std::vector<std::string> libraryWarnings;  ///< warnings of the estimate, a line each
  Duration length{0};                        ///< how much of the recording was played
  bool isDated = true;                       ///< whether its times have a date, see recordings::Reader
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
  /// Opens the recording; called once by play(). A recordings::Error that it throws becomes part of the outcome.
  using Open = std::function<std::unique_ptr<recordings::Reader>()>;

  /// Called after each step, and if the recording cannot be opened; returns whether to go on. An exception ends the
  /// playing, and reaches the caller.
  using GoOn = std::function<bool(const Progress&)>;

  /// Makes a player that asks `goOn` whether to go on; without it, recordings are played to their ends.
  explicit Player(PlayerOptions options, GoOn goOn = {});

  /// Plays one recording to the observers, which must outlive the call.
  ///
  /// A recording that cannot be read, or not to its end, is no exception: the outcome says so, and what was good is
  /// played.
  Outcome play(const Open& open, const std::vector<SessionObserver*>& observers) const;

private:
  PlayerOptions _options;
  GoOn _goOn;
};

}  // namespace KV::session
