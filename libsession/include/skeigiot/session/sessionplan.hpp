#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/sessionname.hpp>

#include <ko/systemclock.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace KV::session
{

/// The files of one session.
struct SKEIGIOT_API SessionInputs
{
  /// So many inputs one session takes at most: all of them are open at a time.
  static constexpr std::size_t most = 64;

  /// One file of the session.
  struct Input
  {
    std::string path;                     ///< as the user gave it
    ko::SystemClock::duration offset{0};  ///< added to all its times
  };

  std::vector<Input> inputs;  ///< one at least; if there are several, they are merged
  std::string file = {};      ///< what exports call it: the path below the folder that was named, or as it was given

  /// Returns the name that exports have for it, as the session with this number.
  SessionName exportedAs(int number) const;

  /// Returns the paths, as messages call the session.
  std::string name() const;
};

/// The user's settings of sessions.
struct SKEIGIOT_API SessionArguments
{
  std::vector<std::string> paths;                            ///< of files and folders
  std::map<std::string, ko::SystemClock::duration> offsets;  ///< by path
  bool separately = false;                                   ///< each file is a session of its own
  std::string format;                                        ///< of the recordings; empty: detected
};

/// Which sessions there are.
struct SKEIGIOT_API SessionPlan
{
  std::vector<SessionInputs> sessions;  ///< in the order in which they are played
  std::vector<std::string> notes;       ///< on files that were skipped
};

/// Why inputs and offsets are no sessions.
enum class PlanFault
{
  FilesBesideFolders,  ///< some are inputs of one session, others are sessions of their own
  NothingToMove,       ///< an offset, though no session has another input
  NoSuchInput,         ///< an offset of what is no input
  NamedTwice,          ///< the same input twice in one session
  TooManyInputs        ///< more inputs of one session than SessionInputs::most
};

/// Arguments that do not go together. The message does not say how a user interface asks for something else.
class SKEIGIOT_API PlanError : public std::invalid_argument
{
public:
  /// Makes an error with this message.
  PlanError(PlanFault fault, const std::string& message) : std::invalid_argument(message), _fault(fault) {}

  /// Returns what is wrong, for a user interface that adds what helps.
  PlanFault fault() const { return _fault; }

private:
  PlanFault _fault;
};

/// Lists the sessions: files named together are inputs of one, unless they are to be separate; a folder
/// is replaced by its recordings, each in a session of its own, in the order of their names.
///
/// \throws Error for a folder that cannot be read or holds no recording.
/// \throws PlanError for arguments that do not go together.
SKEIGIOT_API SessionPlan planSessions(const SessionArguments& arguments);

/// Reads "FILE=SECONDS" into the offsets.
///
/// \throws std::invalid_argument if it is not that.
SKEIGIOT_API void parseOffset(const std::string& text, std::map<std::string, ko::SystemClock::duration>& offsets);

/// Opens all inputs of a session, each by `open`, and returns what reads them as one.
///
/// \throws Error if one cannot be read.
SKEIGIOT_API std::unique_ptr<recordings::Reader> openSession(
    const SessionInputs& session,
    const std::function<std::unique_ptr<recordings::Reader>(const std::string& path)>& open);

}  // namespace KV::session
