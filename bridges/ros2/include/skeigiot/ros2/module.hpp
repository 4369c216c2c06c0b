#pragma once

#include <skeigiot/ros2/bus.hpp>

/// \file
/// How the command finds the bridge in its module, which is loaded when it is needed.

namespace KV::ros2
{

/// Content of the module; command and module must be of the same version.
struct Module
{
  const char* version;                                                                               ///< of the project
  std::unique_ptr<Bus> (*openBus)(const BusOptions& options, Bus::TypeOf typeOf, Bus::Clock clock);  ///< openDdsBus()
};

/// Name of the function in the module, `const Module* skeigiot_ros2Module()`.
constexpr const char* moduleFunction = "skeigiot_ros2Module";

/// Type of that function.
using ModuleFunction = const Module*();

}  // namespace KV::ros2
