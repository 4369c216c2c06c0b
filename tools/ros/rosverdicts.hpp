#pragma once

#include <skeigiot/ros2/bus.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstddef>
#include <string>

namespace KV::tools
{

/// Publishes the verdict on each scope that ends, as JSON in a text:
///   scope    its name
///   end      how it ended, such as "complete", or "not open" for one that was stopped and had not been started
///   seconds  how long it lasted
///   persons  of each person with an update in it: id as in the other topics, verdict, and the number of updates
///
/// If the bus cannot publish a verdict, the session goes on without verdicts.
class RosVerdicts : public session::SessionObserver
{
public:
  static constexpr const char* topic = "/skeigiot/verdicts";
  static constexpr std::size_t mostPersons = 1000;  ///< in one verdict; of more, the first ones

  /// Announces the topic on the bus, which must outlive it.
  explicit RosVerdicts(ros2::Bus& bus);

  void scopeJudged(const session::ScopeVerdict& verdict) override;

  /// Returns the error of the bus, after which nothing is published any more; empty if there was no error.
  const std::string& error() const { return _error; }

private:
  ros2::Bus& _bus;
  std::string _error;
};

}  // namespace KV::tools
