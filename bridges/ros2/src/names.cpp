#include "names.hpp"

namespace KV::ros2
{
namespace
{
const std::string topicPrefix = "rt";
const std::string typeMiddle = "::dds_::";
}  // namespace

std::string ddsTopicOf(const std::string& topic)
{
  return topicPrefix + topic;
}

boost::optional<std::string> rosTopicOfDds(const std::string& name)
{
  if (name.compare(0, topicPrefix.size() + 1, topicPrefix + "/") != 0)
    return {};
  return name.substr(topicPrefix.size());
}

std::string ddsTypeOf(const std::string& type)
{
  std::string name;
  std::size_t begin = 0;
  for (std::size_t slash = type.find('/'); slash != std::string::npos; slash = type.find('/', begin))
  {
    name += type.substr(begin, slash - begin) + "::";
    begin = slash + 1;
  }
  return name + "dds_::" + type.substr(begin) + "_";
}

std::string rosTypeOfDds(const std::string& name)
{
  const std::size_t middle = name.find(typeMiddle);
  if (middle == std::string::npos || name.back() != '_')
    return name;
  const std::size_t last = middle + typeMiddle.size();
  std::string type = name.substr(0, middle) + "/" + name.substr(last, name.size() - last - 1);
  for (std::size_t colons = type.find("::"); colons != std::string::npos; colons = type.find("::"))
    type.replace(colons, 2, "/");
  return type;
}

}  // namespace KV::ros2
