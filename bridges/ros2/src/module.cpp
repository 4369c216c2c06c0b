#include <skeigiot/ros2/module.hpp>

extern "C" __attribute__((visibility("default"))) const KV::ros2::Module* skeigiot_ros2Module();

const KV::ros2::Module* skeigiot_ros2Module()
{
  static const KV::ros2::Module module{SKEIGIOT_VERSION, KV::ros2::openDdsBus};
  return &module;
}
