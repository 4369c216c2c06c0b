#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace KV::ros2
{

/// A member of a message.
struct FieldDescription
{
  std::string name;
  int typeId = 0;            ///< as in type_description_interfaces/msg/FieldType
  std::size_t capacity = 0;  ///< of an array, or of a bounded sequence
  std::string nestedType;    ///< of a message within the message
};

/// The layout of a type of ROS.
struct TypeDescription
{
  std::string name;  ///< such as "std_msgs/msg/Header"
  std::vector<FieldDescription> fields;
};

/// Returns the layouts that a type may have: one, or of a type that changed and whose members in front did not, all.
/// None for a type that is not known.
std::vector<TypeDescription> descriptionsOf(const std::string& type);

/// Returns the names of all types that are known.
std::vector<std::string> knownTypes();

}  // namespace KV::ros2
