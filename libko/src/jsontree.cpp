#include "jsontree.hpp"

#include "floattext.hpp"

#include <ko/typeerror.hpp>
#include <ko/wirelimits.hpp>

#include <boost/locale/utf.hpp>

#include <cmath>

namespace ko
{

namespace
{

class TreeWriter
{
public:
  explicit TreeWriter(WireForm form) : _form(form) {}

  JsonTree write(ValueView view, const Place& place, std::size_t depth) const;

private:
  JsonTree _int(const ValueView& view) const;
  JsonTree _float(const ValueView& view) const;
  JsonTree _optional(const ValueView& view, const Place& place, std::size_t depth) const;
  JsonTree _list(const ValueView& view, const Place& place, std::size_t depth) const;
  JsonTree _map(const ValueView& view, const Place& place, std::size_t depth) const;
  JsonTree _object(const ValueView& view, const Place& place, std::size_t depth) const;

  WireForm _form;
};

std::string checkedText(const std::string& text, const Place& place)
{
  if (!isUtf8(text))
    throw TypeError(place.path(), "the text is not UTF-8");
  return text;
}

/// Returns the depth inside one more list, map or struct.
std::size_t inside(std::size_t depth, const Place& place)
{
  if (depth == wirelimits::depth)
    throw TypeError(place.path(), "nested deeper than " + std::to_string(wirelimits::depth) + " levels");
  return depth + 1;
}

JsonTree TreeWriter::write(ValueView view, const Place& place, std::size_t depth) const
{
  view = held(view);
  if (!view)
    return nullptr;
  switch (kindOf(view))
  {
    case TypeKind::Bool:
      return view.as<BoolTypeInterface>().value(view.storage);
    case TypeKind::Int:
      return _int(view);
    case TypeKind::Float:
      return _float(view);
    case TypeKind::String:
      return checkedText(view.as<StringTypeInterface>().value(view.storage), place);
    case TypeKind::Optional:
      return _optional(view, place, depth);
    case TypeKind::List:
    case TypeKind::Tuple:
      return _list(view, place, inside(depth, place));
    case TypeKind::Map:
      return hasNames(view) ? _object(view, place, inside(depth, place)) : _map(view, place, inside(depth, place));
    case TypeKind::Struct:
      return _object(view, place, inside(depth, place));
    case TypeKind::Dynamic:
      break;  // held() looks inside
  }
  return nullptr;
}

JsonTree TreeWriter::_int(const ValueView& view) const
{
  const auto& type = view.as<IntTypeInterface>();
  const std::int64_t bits = type.value(view.storage);
  return type.isSigned() ? JsonTree(bits) : JsonTree(static_cast<std::uint64_t>(bits));
}

JsonTree TreeWriter::_float(const ValueView& view) const
{
  const auto& type = view.as<FloatTypeInterface>();
  const double number = type.value(view.storage);
  if (_form == WireForm::Cbor)
    return number;
  if (!std::isfinite(number))
    return floatText(number);
  return type.size() == sizeof(float) ? shortestDouble(static_cast<float>(number)) : number;
}

JsonTree TreeWriter::_optional(const ValueView& view, const Place& place, std::size_t depth) const
{
  const auto& type = view.as<OptionalTypeInterface>();
  void* value = type.value(view.storage);
  return value ? write({type.valueType(), value}, place, depth) : nullptr;
}

JsonTree TreeWriter::_list(const ValueView& view, const Place& place, std::size_t depth) const
{
  JsonTree list = JsonTree::array();
  for (const ValueView& element : elements(view, place))
    list.push_back(write(element, place.element(list.size()), depth));
  return list;
}

JsonTree TreeWriter::_map(const ValueView& view, const Place& place, std::size_t depth) const
{
  JsonTree list = JsonTree::array();
  for (const auto& [key, element] : entries(view, place))
  {
    const Place pairPlace = place.element(list.size());
    const std::size_t pairDepth = inside(depth, pairPlace);
    JsonTree pair = JsonTree::array();
    pair.push_back(write(key, pairPlace.element(0), pairDepth));
    pair.push_back(write(element, pairPlace.element(1), pairDepth));
    list.push_back(std::move(pair));
  }
  return list;
}

JsonTree TreeWriter::_object(const ValueView& view, const Place& place, std::size_t depth) const
{
  const std::vector<std::string> memberNames = names(view);
  const std::vector<ValueView> parts = namedParts(view, place);
  JsonTree::object_t members;
  members.reserve(parts.size());
  for (std::size_t i = 0; i < parts.size(); ++i)
  {
    const Place partPlace = place.member(memberNames[i]);
    members.push_back({checkedText(memberNames[i], partPlace), write(parts[i], partPlace, depth)});
  }
  return members;
}

}  // namespace

JsonTree treeOf(const ValueView& view, WireForm form)
{
  return TreeWriter(form).write(view, Place(), 0);
}

bool isUtf8(std::string_view text)
{
  using Utf8 = boost::locale::utf::utf_traits<char>;
  const char* next = text.data();
  const char* const end = next + text.size();
  while (next != end)
  {
    const boost::locale::utf::code_point point = Utf8::decode(next, end);
    if (point == boost::locale::utf::illegal || point == boost::locale::utf::incomplete)
      return false;
  }
  return true;
}

}  // namespace ko
