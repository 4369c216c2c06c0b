#pragma once

#include <nlohmann/json.hpp>

#include <set>
#include <sstream>
#include <string>

namespace support
{

/// Adds the paths of all members below, such as "persons[].time".
template <typename Json>
void addMembers(const Json& json, const std::string& path, std::set<std::string>& members)
{
  if (json.is_array())
    for (const Json& element : json)
      addMembers(element, path + "[]", members);
  if (!json.is_object())
    return;
  for (const auto& member : json.items())
  {
    const std::string name = path.empty() ? member.key() : path + "." + member.key();
    members.insert(name);
    addMembers(member.value(), name, members);
  }
}

/// Returns the paths of all members in alphabetical order, each on a line. Programs that read the JSON rely on the
/// names.
template <typename Json>
std::string membersOf(const Json& json)
{
  std::set<std::string> members;
  addMembers(json, "", members);
  std::string text;
  for (const std::string& member : members)
    text += member + "\n";
  return text;
}

/// Returns the words of a text, each on a line.
inline std::string eachOnALine(const std::string& words)
{
  std::istringstream stream(words);
  std::string text;
  for (std::string word; stream >> word;)
    text += word + "\n";
  return text;
}

}  // namespace support
