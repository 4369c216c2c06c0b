#include "ros/busmodule.hpp"

#include <skeigiot/ros2/module.hpp>

#include <dlfcn.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace KV::tools
{

#ifdef SKEIGIOT_ROS_MODULE

namespace
{

const char* const install = "install the package skeigiot-ros in the version " SKEIGIOT_VERSION;

/// Returns where the module is: installed, or in the folder of the build.
std::string pathOfModule()
{
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* const place : {SKEIGIOT_ROS_MODULE_INSTALLED, SKEIGIOT_ROS_MODULE})
    if (const std::filesystem::path path = folder / place; std::filesystem::exists(path, error))
      return path.string();
  throw NoBusModule(std::string("the bridge to ROS 2 is not installed: ") + install);
}

const ros2::Module& loadModule()
{
  const std::string path = pathOfModule();
  void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr)
    throw NoBusModule(std::string("the bridge to ROS 2 cannot be loaded: ") + ::dlerror());
  // POSIX has dlsym() return functions as pointers to objects.
  auto* const function =
      reinterpret_cast<ros2::ModuleFunction*>(  // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
          ::dlsym(library, ros2::moduleFunction));
  if (function == nullptr || std::string(function()->version) != SKEIGIOT_VERSION)
    throw NoBusModule("the bridge to ROS 2, " + path + ", is of another version: " + install);
  return *function();
}

}  // namespace

std::unique_ptr<ros2::Bus> openBus(const ros2::BusOptions& options, ros2::Bus::TypeOf typeOf, ros2::Bus::Clock clock)
{
  return loadModule().openBus(options, std::move(typeOf), std::move(clock));
}

#else

std::unique_ptr<ros2::Bus> openBus(const ros2::BusOptions&, ros2::Bus::TypeOf, ros2::Bus::Clock)
{
  throw NoBusModule(
      "this command was built without the bridge to ROS 2: install Fast DDS (on Debian: libfastrtps-dev), and build it "
      "anew");
}

#endif

}  // namespace KV::tools
