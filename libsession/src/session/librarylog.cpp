#include <skeigiot/session/librarylog.hpp>

#include <skeigiot/session/wording.hpp>

#include <thread>

namespace KV::session
{

// Another thread that is just writing a record may call the handler after the log is gone: it must not touch the log.
LibraryLog::LibraryLog()
  : _handler(ko::log::addHandler([this, thread = std::this_thread::get_id()](const ko::log::Record& record) {
      if (std::this_thread::get_id() == thread)
        _add(record);
    }))
{}

LibraryLog::~LibraryLog()
{
  ko::log::removeHandler(_handler);
}

std::vector<std::string> LibraryLog::take()
{
  std::vector<std::string> lines;
  for (const auto& [place, kind] : _kinds)
    lines.push_back(kind.firstMessage + (kind.more == 0 ? "" : " (and " + counted(kind.more, "more time") + ")"));
  _kinds.clear();
  return lines;
}

void LibraryLog::_add(const ko::log::Record& record)
{
  if (record.level == ko::log::Level::Silent || record.level > ko::log::Level::Warning)
    return;
  const auto [kind, isNew] = _kinds.try_emplace(Place(record.file, record.line));
  if (isNew)
    kind->second.firstMessage = record.category + ": " + record.message;
  else
    ++kind->second.more;
}

}  // namespace KV::session
