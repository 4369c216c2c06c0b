#pragma once

#include <skeigiot/api.hpp>

#include <ko/log.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Collects the warnings of the library on the thread that made it while it lives, instead of letting each of them
/// through.
///
/// Warnings that come from the same place in the library are alike: of these the first is kept, and the others are
/// counted. So the memory is bounded.
class SKEIGIOT_API LibraryLog
{
public:
  /// Collects from now on what the library logs on this thread.
  LibraryLog();
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

  /// Returns the warnings since the last call, one line for each kind, and forgets them.
  std::vector<std::string> take();

private:
  struct Kind
  {
    std::string firstMessage;
    std::size_t more = 0;
  };
  using Place = std::pair<std::string, int>;  // file and line

  void _add(const ko::log::Record& record);

  std::map<Place, Kind> _kinds;
  ko::log::HandlerId _handler;
};

}  // namespace KV::session
