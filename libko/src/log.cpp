#include <ko/log.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <iostream>
#include <iterator>
#include <locale>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <utility>

namespace ko::log
{

namespace
{

using Handler = boost::function<void(const Record&)>;

/// A handler that was added, until it is removed.
struct Addition
{
  explicit Addition(Handler added) : handler(std::move(added)) {}

  const Handler handler;
  std::atomic<bool> isRemoved{false};  // although it is still in the list, for want of memory
};

using Handlers = std::map<HandlerId, std::shared_ptr<Addition>>;  // ids ascend: in the order of adding

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

/// Drops the handlers that stayed in the list when they were removed.
void dropRemoved(Handlers& handlers)
{
  for (auto next = handlers.begin(); next != handlers.end();)
    next = next->second->isRemoved ? handlers.erase(next) : std::next(next);
}

/// Replaces the handlers by a copy that `change` has edited.
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
  dropRemoved(*handlers);
  former = std::exchange(shared.handlers, std::move(handlers));
}

/// Removes a handler without allocating: it stays in the list, and is skipped.
void skipHandler(HandlerId id)
{
  const std::shared_ptr<const Handlers> handlers = currentHandlers();
  const auto found = handlers->find(id);
  if (found != handlers->end())
    found->second->isRemoved = true;
}

/// Names a level whose records go to standard error.
const char* levelName(Level level)
{
  if (level == Level::Fatal)
    return "fatal";
  return level == Level::Error ? "error" : "warning";
}

void writeToStandardError(const Record& record)
{
  if (record.level < Level::Fatal || record.level > Level::Warning)
    return;
  std::ostringstream line;
  line.imbue(std::locale::classic());
  line.exceptions(std::ios::badbit);  // throws if memory runs out, instead of cutting the line
  line << '[' << levelName(record.level) << "] " << record.category << ": " << record.message << " (" << record.file
       << ':' << record.line << ", " << record.function << ")\n";
  std::cerr << line.str();  // one write, so that lines of several threads do not mix
}

/// Allocates nothing, since the handler may have run out of memory.
void reportFailure(const char* reason)
{
  std::array<char, 512> line;  // NOLINT(cppcoreguidelines-pro-type-member-init): snprintf() fills it
  const char* const form = "A log handler failed: %s";
  const auto wanted = static_cast<std::size_t>(std::max(0, std::snprintf(line.data(), line.size(), form, reason)));
  const std::size_t size = std::min(wanted, line.size() - 1);
  line.at(size) = '\n';
  std::cerr.write(line.data(), static_cast<std::streamsize>(size + 1));  // one write, as above
}

void handOut(const Handler& handler, const Record& record)
{
  try
  {
    handler(record);
  }
  catch (const std::exception& error)
  {
    reportFailure(error.what());
  }
  catch (...)
  {
    reportFailure("unknown exception");
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
  bool anyThere = false;
  for (const auto& [id, addition] : *handlers)
  {
    if (addition->isRemoved)
      continue;
    anyThere = true;
    handOut(addition->handler, record);
  }
  if (!anyThere)
    writeToStandardError(record);
}

HandlerId addHandler(Handler handler)
{
  if (handler.empty())
    boost::throw_exception(boost::bad_function_call());
  const auto added = std::make_shared<Addition>(std::move(handler));
  HandlerId id = 0;
  replaceHandlers([&](Handlers& handlers, HandlerId& lastId) {
    id = ++lastId;
    handlers.emplace(id, added);
  });
  return id;
}

void removeHandler(HandlerId id)
{
  try
  {
    replaceHandlers([id](Handlers& handlers, HandlerId&) { handlers.erase(id); });
  }
  catch (const std::bad_alloc&)
  {
    skipHandler(id);
  }
}

}  // namespace ko::log
