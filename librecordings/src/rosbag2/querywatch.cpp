#include "rosbag2/querywatch.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>

#include <sqlite3.h>

#include <utility>

namespace KV::recordings
{
namespace
{
constexpr int stepsBetween = 1000;  // a step takes less than 0.1 ms

}  // namespace

QueryWatch::QueryWatch(sqlite3& database, std::uintmax_t bytes)
  : _mostSteps(limits::mostStepsPerByte * bytes + limits::mostStepsOfAnyBag)
{
  sqlite3_progress_handler(&database, stepsBetween, _lookIn, this);
}

void QueryWatch::rethrow()
{
  if (_thrown)
    std::rethrow_exception(std::exchange(_thrown, nullptr));
}

// SQLite is written in C: no exception may pass through it.
int QueryWatch::_lookIn(void* watch)
{
  return static_cast<QueryWatch*>(watch)->_mustEnd() ? 1 : 0;
}

bool QueryWatch::_mustEnd()
{
  try
  {
    InterruptionCheck::ask();
  }
  catch (...)
  {
    _thrown = std::current_exception();
    return true;
  }
  _steps += stepsBetween;
  return _steps > _mostSteps;
}

}  // namespace KV::recordings
