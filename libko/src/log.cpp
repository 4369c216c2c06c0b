#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <utility>

namespace ko::log
{

namespace
{

using Handler = boost::function<void(const Record&)>;
using Handlers = std::map<HandlerId, std::shared_ptr<const Handler>>;  // ids ascend: in the order of adding

/// Categories and handlers of the process.
struct Registry
{
  boost::mutex mutex;

  // Guarded by mutex
  std::set<std::string> categories;  // a node container: the address of a name never changes
  std::shared_ptr<const Handlers> handlers = std::make_shared<Handlers>();  // replaced whole, never changed in place
  HandlerId lastId = 0;
};

/// Built on first use, so that static initialisers of any unit may register; never destroyed, so that they may log at
/// exit as well.
Registry& registry()
{
  static auto& instance = *new Registry;
  return instance;
}

std::shared_ptr<const Handlers> currentHandlers()
{
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  return shared.handlers;
}

/// Puts a copy of the handlers, as `change` leaves it, in their place.
///
/// A handler that is dropped thereby dies after the lock is released: its destructor may log.
template <typename Change>
void replaceHandlers(Change change)
{
  std::shared_ptr<const Handlers> former;
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  auto handlers = std::make_shared<Handlers>(*shared.handlers);
  change(*handlers, shared.lastId);
  former = std::exchange(shared.handlers, std::move(handlers));
}

const char* levelName(Level level)
{
  switch (level)
  {
    case Level::Silent:
      return "silent";
    case Level::Fatal:
      return "fatal";
    case Level::Error:
      return "error";
    case Level::Warning:
      return "warning";
    case Level::Info:
      return "info";
    case Level::Verbose:
      return "verbose";
    case Level::Debug:
      return "debug";
  }
  return "unknown level";
}

void writeToStandardError(const Record& record)
{
  if (record.level < Level::Fatal || record.level > Level::Warning)
    return;
  std::ostringstream line;
  line << '[' << levelName(record.level) << "] " << record.category << ": " << record.message << " (" << record.file
       << ':' << record.line << ", " << record.function << ")\n";
  std::cerr << line.str();  // one write, so that lines of several threads do not mix
}

void handOut(const Handler& handler, const Record& record)
{
  try
  {
    handler(record);
  }
  catch (const std::exception& error)
  {
    std::cerr << std::string("A log handler failed: ") + error.what() + "\n";
  }
  catch (...)
  {
    std::cerr << "A log handler failed: unknown exception\n";
  }
}

}  // namespace

Category addCategory(const std::string& name)
{
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  return Category(*shared.categories.insert(name).first);
}

std::vector<std::string> categories()
{
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  return {shared.categories.begin(), shared.categories.end()};
}

void log(Level level, const Category& category, const std::string& message, const std::string& file,
         const std::string& function, int line)
{
  log(level, category.name(), message, file, function, line);
}

void log(Level level, const std::string& category, const std::string& message, const std::string& file,
         const std::string& function, int line)
{
  const Record record{level, category, message, file, function, line, SystemClock::now()};
  const std::shared_ptr<const Handlers> handlers = currentHandlers();
  if (handlers->empty())
    return writeToStandardError(record);
  for (const auto& [id, handler] : *handlers)
    handOut(*handler, record);
}

HandlerId addHandler(Handler handler)
{
  if (handler.empty())
    boost::throw_exception(boost::bad_function_call());
  const auto added = std::make_shared<const Handler>(std::move(handler));
  HandlerId id = 0;
  replaceHandlers([&](Handlers& handlers, HandlerId& lastId) {
    id = ++lastId;
    handlers.emplace(id, added);
  });
  return id;
}

void removeHandler(HandlerId id)
{
  replaceHandlers([id](Handlers& handlers, HandlerId&) { handlers.erase(id); });
}

}  // namespace ko::log
