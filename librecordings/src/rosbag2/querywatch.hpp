#pragma once

#include <cstdint>
#include <exception>

struct sqlite3;

namespace KV::recordings
{

/// Watches the queries of one database, and ends them: when the InterruptionCheck of the thread throws, and when they
/// take more steps than an undamaged file of that size can need.
class QueryWatch
{
public:
  /// Begins to watch. It must outlive the database.
  ///
  /// \param bytes  of the file
  QueryWatch(sqlite3& database, std::uintmax_t bytes);
  QueryWatch(const QueryWatch&) = delete;
  QueryWatch& operator=(const QueryWatch&) = delete;

  /// Allows the same number of steps again, for another pass through the file.
  void allowAnotherPass() { _steps = 0; }

  /// Throws the exception of the check again, if it threw; else reports that the ended query took too many steps.
  void rethrow();

private:
  static int _lookIn(void* watch);
  bool _mustEnd();

  std::uintmax_t _mostSteps;
  std::uintmax_t _steps = 0;
  std::exception_ptr _thrown;
};

}  // namespace KV::recordings
