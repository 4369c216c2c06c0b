#include "typedescriptions.hpp"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

namespace KV::ros2
{
namespace
{

struct Definition
{
  const char* type;
  const char* fields;  // as in a file of the type .msg, without defaults; commas between them
};

const std::array<Definition, 29> definitions{{
    {"builtin_interfaces/msg/Time", "int32 sec, uint32 nanosec"},
    {"std_msgs/msg/Header", "builtin_interfaces/msg/Time stamp, string frame_id"},
    {"rosgraph_msgs/msg/Clock", "builtin_interfaces/msg/Time clock"},
    {"sensor_msgs/msg/JointState",
     "std_msgs/msg/Header header, string[] name, float64[] position, float64[] velocity, float64[] effort"},
    {"std_msgs/msg/Bool", "bool data"},
    {"std_msgs/msg/String", "string data"},
    {"geometry_msgs/msg/Vector3", "float64 x, float64 y, float64 z"},
    {"geometry_msgs/msg/Quaternion", "float64 x, float64 y, float64 z, float64 w"},
    {"geometry_msgs/msg/Transform", "geometry_msgs/msg/Vector3 translation, geometry_msgs/msg/Quaternion rotation"},
    {"geometry_msgs/msg/TransformStamped",
     "std_msgs/msg/Header header, string child_frame_id, geometry_msgs/msg/Transform transform"},
    {"tf2_msgs/msg/TFMessage", "geometry_msgs/msg/TransformStamped[] transforms"},
    {"diagnostic_msgs/msg/KeyValue", "string key, string value"},
    {"diagnostic_msgs/msg/DiagnosticStatus",
     "byte level, string name, string message, string hardware_id, diagnostic_msgs/msg/KeyValue[] values"},
    {"diagnostic_msgs/msg/DiagnosticArray",
     "std_msgs/msg/Header header, diagnostic_msgs/msg/DiagnosticStatus[] status"},
    {"hri_msgs/msg/EngagementLevel", "std_msgs/msg/Header header, uint8 level"},
    {"hri_msgs/msg/Expression",
     "std_msgs/msg/Header header, string expression, float32 valence, float32 arousal, float32 confidence"},
    {"hri_msgs/msg/Gaze", "std_msgs/msg/Header header, string sender, string receiver"},
    {"hri_msgs/msg/IdsList", "std_msgs/msg/Header header, string[] ids"},
    {"hri_msgs/msg/IdsMatch", "string id1, int8 id1_type, string id2, int8 id2_type, float32 confidence"},
    {"hri_msgs/msg/NormalizedPointOfInterest2D", "float32 x, float32 y, float32 c"},
    {"hri_msgs/msg/FacialLandmarks",
     "std_msgs/msg/Header header, hri_msgs/msg/NormalizedPointOfInterest2D[70] landmarks, uint32 height, uint32 width"},
    {"hri_msgs/msg/FacialActionUnits", "std_msgs/msg/Header header, float32[99] intensity, float32[99] confidence"},
    {"hri_msgs/msg/NormalizedRegionOfInterest2D",
     "std_msgs/msg/Header header, float32 xmin, float32 ymin, float32 xmax, float32 ymax, float32 c"},
    {"hri_msgs/msg/SoftBiometrics",
     "std_msgs/msg/Header header, uint8 age, float32 age_confidence, uint8 gender, float32 gender_confidence"},
    {"hri_msgs/msg/AudioFeatures", "float32 zcr, float32 rms, float32 pitch, float32 hnr, float32[] mfcc"},
    // of 2.2.1, and what versions before it had behind the same members
    {"hri_msgs/msg/LiveSpeech",
     "std_msgs/msg/Header header, string incremental, string final, float64 confidence, string locale"},
    {"hri_msgs/msg/LiveSpeech",
     "std_msgs/msg/Header header, string incremental, string final, float64 confidence, string language"},
    {"hri_msgs/msg/LiveSpeech",
     "std_msgs/msg/Header header, string incremental, string final, float64 confidence, string language, string "
     "locale"},
    {"hri_msgs/msg/LiveSpeech",
     "std_msgs/msg/Header header, string incremental, string final, float64 confidence, string locale, string "
     "language"},
}};

// As in type_description_interfaces/msg/FieldType.
const std::array<std::pair<const char*, int>, 14> typeIds{{{"int8", 2},
                                                           {"uint8", 3},
                                                           {"int16", 4},
                                                           {"uint16", 5},
                                                           {"int32", 6},
                                                           {"uint32", 7},
                                                           {"int64", 8},
                                                           {"uint64", 9},
                                                           {"float32", 10},
                                                           {"float64", 11},
                                                           {"bool", 15},
                                                           {"byte", 16},
                                                           {"string", 17},
                                                           {"char", 3}}};
constexpr int nestedId = 1;
constexpr int arrayOffset = 48;
constexpr int sequenceOffset = 144;

FieldDescription fieldOf(std::string type, std::string name)
{
  FieldDescription field;
  field.name = std::move(name);
  int offset = 0;
  if (const std::size_t bracket = type.find('['); bracket != std::string::npos)
  {
    const std::string count = type.substr(bracket + 1, type.size() - bracket - 2);
    offset = count.empty() ? sequenceOffset : arrayOffset;
    field.capacity = count.empty() ? 0 : std::stoul(count);
    type.resize(bracket);
  }
  const auto* const known =
      std::find_if(typeIds.begin(), typeIds.end(), [&type](const auto& entry) { return entry.first == type; });
  field.typeId = offset + (known == typeIds.end() ? nestedId : known->second);
  if (known == typeIds.end())
    field.nestedType = type;
  return field;
}

TypeDescription descriptionOf(const Definition& definition)
{
  TypeDescription description;
  description.name = definition.type;
  std::istringstream fields(definition.fields);
  std::string type;
  std::string name;
  while (fields >> type >> name)
  {
    if (name.back() == ',')
      name.pop_back();
    description.fields.push_back(fieldOf(type, name));
  }
  return description;
}

}  // namespace

std::vector<TypeDescription> descriptionsOf(const std::string& type)
{
  std::vector<TypeDescription> found;
  for (const Definition& definition : definitions)
    if (definition.type == type)
      found.push_back(descriptionOf(definition));
  return found;
}

std::vector<std::string> knownTypes()
{
  std::vector<std::string> names;
  for (const Definition& definition : definitions)
    if (names.empty() || names.back() != definition.type)
      names.emplace_back(definition.type);
  return names;
}

}  // namespace KV::ros2
