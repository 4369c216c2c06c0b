#pragma once

#include <ko/log.hpp>

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace support
{

/// Keeps every log record that is written while it lives, so nothing is written to standard error.
///
/// May receive records from several threads.
class CapturedLog
{
public:
  CapturedLog() : _id(ko::log::addHandler([this](const ko::log::Record& record) { _keep(record); })) {}
  ~CapturedLog() { ko::log::removeHandler(_id); }
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  /// Returns the records so far, in the order in which they were written.
  std::vector<ko::log::Record> records() const
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _records;
  }

  /// Returns the messages of the records so far, in the order in which they were written.
  std::vector<std::string> messages() const
  {
    std::vector<std::string> texts;
    for (const ko::log::Record& record : records())
      texts.push_back(record.message);
    return texts;
  }

  bool empty() const { return records().empty(); }
  std::size_t size() const { return records().size(); }

private:
  void _keep(const ko::log::Record& record)
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    _records.push_back(record);
  }

  mutable std::mutex _mutex;
  std::vector<ko::log::Record> _records;  // guarded by _mutex
  ko::log::HandlerId _id;                 // last: the handler may be called as soon as it is added
};

}  // namespace support
