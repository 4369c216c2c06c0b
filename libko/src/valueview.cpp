#include "valueview.hpp"

#include <ko/typeerror.hpp>
#include <ko/value.hpp>

namespace ko
{

namespace
{

void requireRegistered(const TypeInterface* type, const Place& place)
{
  if (!type)
    throw TypeError(place.path(), "the type is not registered");
}

std::vector<ValueView> members(const ValueView& view, const Place& place)
{
  const auto& type = view.as<StructTypeInterface>();
  const std::vector<std::string> memberNames = type.elementsName();
  std::vector<ValueView> views;
  for (TypeInterface* memberType : type.memberTypes())
  {
    const std::size_t index = views.size();
    requireRegistered(memberType, memberNames.empty() ? place.element(index) : place.member(memberNames[index]));
    void* storage = type.get(view.storage, index);
    if (!storage)
      throw TypeError(place.path(), "the handle has no record");
    views.push_back({memberType, storage});
  }
  return views;
}

std::vector<ValueView> listElements(const ValueView& view, const Place& place)
{
  const auto& type = view.as<ListTypeInterface>();
  TypeInterface* elementType = type.elementType();
  requireRegistered(elementType, place);
  std::vector<ValueView> views;
  views.reserve(type.size(view.storage));
  for (std::size_t i = 0; i < type.size(view.storage); ++i)
    views.push_back({elementType, type.element(view.storage, i)});
  return views;
}

}  // namespace

ValueView held(ValueView view)
{
  while (view && kindOf(view) == TypeKind::Dynamic)
  {
    const Value& value = view.as<DynamicTypeInterface>().value(view.storage);
    view = {value.type(), value.storage()};
  }
  return view;
}

std::size_t sizeOf(const ValueView& view)
{
  if (!view)
    return 0;
  switch (kindOf(view))
  {
    case TypeKind::List:
      return view.as<ListTypeInterface>().size(view.storage);
    case TypeKind::Map:
      return view.as<MapTypeInterface>().size(view.storage);
    case TypeKind::Tuple:
    case TypeKind::Struct:
      return view.as<StructTypeInterface>().memberTypes().size();
    default:
      return 0;
  }
}

std::vector<ValueView> elements(const ValueView& view, const Place& place)
{
  return kindOf(view) == TypeKind::List ? listElements(view, place) : members(view, place);
}

std::vector<std::pair<ValueView, ValueView>> entries(const ValueView& view, const Place& place)
{
  const auto& type = view.as<MapTypeInterface>();
  TypeInterface* keyType = type.keyType();
  TypeInterface* elementType = type.elementType();
  requireRegistered(keyType, place);
  requireRegistered(elementType, place);
  std::vector<std::pair<ValueView, ValueView>> views;
  type.forEach(view.storage, [&](void* key, void* element) {
    views.emplace_back(ValueView{keyType, key}, ValueView{elementType, element});
  });
  return views;
}

bool hasNames(const ValueView& view)
{
  if (!view)
    return false;
  if (kindOf(view) == TypeKind::Struct)
    return true;
  if (kindOf(view) != TypeKind::Map)
    return false;
  const TypeInterface* keyType = view.as<MapTypeInterface>().keyType();
  return keyType && keyType->kind() == TypeKind::String;
}

std::vector<std::string> names(const ValueView& view, const Place& place)
{
  if (kindOf(view) == TypeKind::Struct)
    return view.as<StructTypeInterface>().elementsName();
  std::vector<std::string> keys;
  for (const auto& [key, element] : entries(view, place))
    keys.push_back(key.as<StringTypeInterface>().value(key.storage));
  return keys;
}

std::vector<ValueView> namedParts(const ValueView& view, const Place& place)
{
  if (kindOf(view) == TypeKind::Struct)
    return members(view, place);
  std::vector<ValueView> parts;
  for (const auto& [key, element] : entries(view, place))
    parts.push_back(element);
  return parts;
}

}  // namespace ko
