#include "terminal/typelisting.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>

namespace KV::tools
{

namespace
{

using Json = nlohmann::ordered_json;

struct Member
{
  std::string name;
  const ko::TypeInterface* type;

  /// Returns the struct type of the member, or null.
  const ko::StructTypeInterface* asStruct() const
  {
    const bool isStruct = type && type->kind() == ko::TypeKind::Struct;
    return isStruct ? static_cast<const ko::StructTypeInterface*>(type) : nullptr;
  }
};

std::vector<Member> membersOf(const ko::StructTypeInterface& type)
{
  const std::vector<std::string> names = type.elementsName();
  const std::vector<ko::TypeInterface*> types = type.memberTypes();
  std::vector<Member> members;
  for (std::size_t i = 0; i < names.size(); ++i)
    members.push_back({names[i], types[i]});
  return members;
}

void writeMembers(std::ostream& stream, const ko::StructTypeInterface& type, Nested nested, std::size_t depth)
{
  const std::vector<Member> members = membersOf(type);
  std::size_t width = 0;
  for (const Member& member : members)
    width = std::max(width, member.name.size());

  for (const Member& member : members)
  {
    const std::string gap(width - member.name.size() + 2, ' ');
    stream << std::string(2 * depth, ' ') << member.name << gap << ko::typeName(member.type) << '\n';
    const ko::StructTypeInterface* const inner = member.asStruct();
    if (inner && nested == Nested::Yes)
      writeMembers(stream, *inner, nested, depth + 1);
  }
}

Json membersAsJson(const ko::StructTypeInterface& type, Nested nested)
{
  Json members = Json::array();
  for (const Member& member : membersOf(type))
  {
    Json object = {{"name", member.name}, {"type", ko::typeName(member.type)}};
    const ko::StructTypeInterface* const inner = member.asStruct();
    if (inner && nested == Nested::Yes)
      object["members"] = membersAsJson(*inner, nested);
    members.push_back(std::move(object));
  }
  return members;
}

}  // namespace

void writeTypesAsText(std::ostream& stream, const std::vector<ko::StructTypeInterface*>& structs, Nested nested)
{
  bool first = true;
  for (const ko::StructTypeInterface* type : structs)
  {
    stream << (first ? "" : "\n") << type->className() << '\n';
    writeMembers(stream, *type, nested, 1);
    first = false;
  }
}

void writeTypesAsJson(std::ostream& stream, const std::vector<ko::StructTypeInterface*>& structs, Nested nested)
{
  Json listing = Json::array();
  for (const ko::StructTypeInterface* type : structs)
    listing.push_back({{"className", type->className()}, {"members", membersAsJson(*type, nested)}});
  stream << listing.dump(2) << '\n';
}

}  // namespace KV::tools
