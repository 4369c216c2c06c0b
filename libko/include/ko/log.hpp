#pragma once

#include <ko/api.hpp>
#include <ko/systemclock.hpp>

#include <boost/function.hpp>

#include <string>
#include <vector>

/// The log of the middleware: records by category, handed to handlers.
namespace ko::log
{

/// How serious a record is; the lower, the graver.
enum class Level
{
  Silent,   ///< nothing; no record has it
  Fatal,    ///< the process cannot go on
  Error,    ///< something was not done
  Warning,  ///< something was refused, or is not as it should be
  Info,     ///< what is good to know
  Verbose,  ///< more of it
  Debug     ///< for developers
};

/// Handle on a registered category: copies, and handles of one name, are equal.
///
/// Lives as long as the process.
class KO_API Category
{
public:
  /// Returns the name that the category was registered under.
  const std::string& name() const { return *_name; }

  /// Whether both are of one name.
  bool operator==(const Category& other) const { return _name == other._name; }
  /// Whether they are of different names.
  bool operator!=(const Category& other) const { return _name != other._name; }

private:
  explicit Category(const std::string& name) : _name(&name) {}
  friend KO_API Category addCategory(const std::string& name);

  const std::string* _name;  // owned by the registry, one address per name
};

/// Registers the category `name`, and returns a handle to it; a second registration returns the same category.
///
/// May be called at any time, static initialisation included, whatever the order of libraries and units.
///
/// \par Thread safety
///   Safe from any thread.
KO_API Category addCategory(const std::string& name);

/// Returns the names of all registered categories, in ascending order.
///
/// \par Thread safety
///   Safe from any thread.
KO_API std::vector<std::string> categories();

/// One message with where and when it was written.
struct Record
{
  Level level;                   ///< how serious it is
  std::string category;          ///< name of the category, for example "kvmood.emotionalstate"
  std::string message;           ///< what happened, without a line end
  std::string file;              ///< source component, for example "libemotion/src/personstate"
  std::string function;          ///< name of the function that wrote it
  int line;                      ///< where in the file
  SystemClock::time_point time;  ///< when it was written, by SystemClock
};

/// Hands one record, stamped with SystemClock::now(), to every handler in the order in which they were added.
///
/// With no handler added, a record from Level::Warning up to Level::Fatal goes to standard error, a line each, and
/// every other is dropped. An exception of a handler ends neither the caller nor the handlers after it: it is reported
/// on standard error, cut to 500 bytes.
///
/// \throws std::bad_alloc, and what the clock source of the thread throws; no handler has received the record then.
/// \par Thread safety
///   Safe from any thread. The log holds no lock of its own while a handler runs, so a handler may log, add and remove
///   handlers; it may be called from several threads at once. The caller of log() may hold locks, see addHandler().
KO_API void log(Level level, const Category& category, const std::string& message, const std::string& file,
                const std::string& function, int line);

/// As above, with the category by its name; the name need not be registered.
KO_API void log(Level level, const std::string& category, const std::string& message, const std::string& file,
                const std::string& function, int line);

/// Identifies an added handler.
using HandlerId = int;

/// Adds a handler that receives every record from now on, and returns its id (never the same twice in a process).
///
/// A handler runs on the thread that logs, in the middle of its work, and that thread may hold locks. So a handler must
/// not call what takes them: it would wait for ever. The case to know: a person is updated inside a callback of a
/// KV::SocialGraph, the update logs a warning, and the handler calls the same graph. Let the handler put what is to be
/// done into a queue, and do it after the callback; docs/threads-and-locks.md has the pattern.
///
/// \throws boost::bad_function_call "call to empty boost::function" if `handler` is empty.
/// \par Thread safety
///   Safe from any thread.
KO_API HandlerId addHandler(boost::function<void(const Record&)> handler);

/// Removes the handler with this id; an unknown id changes nothing. Needs no memory to be there: without any, the
/// handler is called no more, but lives on.
///
/// A record that another thread is handing out at that moment may still reach the handler after this returns.
///
/// \par Thread safety
///   Safe from any thread.
KO_API void removeHandler(HandlerId id);

}  // namespace ko::log
