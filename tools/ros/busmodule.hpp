#pragma once

#include <skeigiot/ros2/bus.hpp>

#include <memory>
#include <stdexcept>

namespace KV::tools
{

/// The bridge to ROS 2 is not there; the text says how to get it.
class NoBusModule : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// Loads the bridge to ROS 2, which is a module of its own, and opens the bus. The module stays loaded.
///
/// \throws NoBusModule if the module was not built, is not installed, or is of another version.
/// \throws std::runtime_error if the bus cannot be opened.
std::unique_ptr<ros2::Bus> openBus(const ros2::BusOptions& options, ros2::Bus::TypeOf typeOf, ros2::Bus::Clock clock);

}  // namespace KV::tools
