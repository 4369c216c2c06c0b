#include <ko/typeinterface.hpp>

namespace ko
{

namespace
{

std::string intName(const IntTypeInterface& type)
{
  return (type.isSigned() ? "int" : "uint") + std::to_string(type.size() * 8);
}

std::string tupleName(const StructTypeInterface& type)
{
  std::string name;
  for (const TypeInterface* member : type.memberTypes())
    name += (name.empty() ? "(" : ", ") + typeName(member);
  return name.empty() ? "()" : name + ")";
}

}  // namespace

TypeInterface::~TypeInterface() = default;

bool StructTypeInterface::convertFrom(const MemberDifference& difference) const
{
  return difference.dropped.empty() && difference.missing.empty();
}

bool StructTypeInterface::convertTo(const MemberDifference& difference) const
{
  return difference.dropped.empty() && difference.missing.empty();
}

std::string typeName(const TypeInterface* type)
{
  if (!type)
    return "an unregistered type";
  switch (type->kind())
  {
    case TypeKind::Bool:
      return "bool";
    case TypeKind::Int:
      return intName(static_cast<const IntTypeInterface&>(*type));
    case TypeKind::Float:
      return static_cast<const FloatTypeInterface&>(*type).size() == sizeof(float) ? "float" : "double";
    case TypeKind::String:
      return "string";
    case TypeKind::List:
      return "list of " + typeName(static_cast<const ListTypeInterface&>(*type).elementType());
    case TypeKind::Map: {
      const auto& map = static_cast<const MapTypeInterface&>(*type);
      return "map from " + typeName(map.keyType()) + " to " + typeName(map.elementType());
    }
    case TypeKind::Optional:
      return "optional " + typeName(static_cast<const OptionalTypeInterface&>(*type).valueType());
    case TypeKind::Tuple:
      return tupleName(static_cast<const StructTypeInterface&>(*type));
    case TypeKind::Struct:
      return static_cast<const StructTypeInterface&>(*type).className();
    case TypeKind::Dynamic:
      return "any";
  }
  return "a type of unknown kind";
}

}  // namespace ko
