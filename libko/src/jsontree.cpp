#include "jsontree.hpp"

#include "floattext.hpp"

#include <ko/typeerror.hpp>
#include <ko/utf8.hpp>
#include <ko/wirelimits.hpp>

#include <cmath>

namespace ko
{

namespace
{

/// Writes in place into a tree; the owner of the tree frees it: see DocumentTree.
class TreeWriter
{
public:
  explicit TreeWriter(WireForm form) : _form(form) {}

  void write(JsonTree& target, ValueView view, const Place& place, std::size_t depth) const;

private:
  static JsonTree _int(const ValueView& view);
  JsonTree _float(const ValueView& view) const;
  void _optional(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const;
  void _list(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const;
  void _map(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const;
  void _object(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const;

  /// Appends an element to the list `target`.
  void _append(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const;

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

void TreeWriter::write(JsonTree& target, ValueView view, const Place& place, std::size_t depth) const
{
  view = held(view);
  if (!view)
    return;
  switch (kindOf(view))
  {
    case TypeKind::Bool:
      target = view.as<BoolTypeInterface>().value(view.storage);
      break;
    case TypeKind::Int:
      target = _int(view);
      break;
    case TypeKind::Float:
      target = _float(view);
      break;
    case TypeKind::String:
      target = checkedText(view.as<StringTypeInterface>().value(view.storage), place);
      break;
    case TypeKind::Optional:
      return _optional(target, view, place, depth);
    case TypeKind::List:
    case TypeKind::Tuple:
      return _list(target, view, place, inside(depth, place));
    case TypeKind::Map:
      return hasNames(view) ? _object(target, view, place, inside(depth, place))
                            : _map(target, view, place, inside(depth, place));
    case TypeKind::Struct:
      return _object(target, view, place, inside(depth, place));
    default:  // null for an unknown kind; held() has already unpacked dynamic values
      break;
  }
}

JsonTree TreeWriter::_int(const ValueView& view)
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

void TreeWriter::_optional(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const
{
  const auto& type = view.as<OptionalTypeInterface>();
  if (void* const value = type.value(view.storage))
    write(target, {type.valueType(), value}, place, depth);
}

void TreeWriter::_append(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const
{
  const Place elementPlace = place.element(target.size());
  target.push_back(nullptr);
  write(target.back(), view, elementPlace, depth);
}

void TreeWriter::_list(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const
{
  target = JsonTree::array();
  for (const ValueView& element : elements(view, place))
    _append(target, element, place, depth);
}

void TreeWriter::_map(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const
{
  target = JsonTree::array();
  for (const auto& [key, element] : entries(view, place))
  {
    const Place pairPlace = place.element(target.size());
    const std::size_t pairDepth = inside(depth, pairPlace);
    target.push_back(JsonTree::array());
    JsonTree& pair = target.back();
    _append(pair, key, pairPlace, pairDepth);
    _append(pair, element, pairPlace, pairDepth);
  }
}

void TreeWriter::_object(JsonTree& target, const ValueView& view, const Place& place, std::size_t depth) const
{
  const std::vector<std::string> memberNames = names(view, place);
  const std::vector<ValueView> parts = namedParts(view, place);
  target = JsonTree::object();
  auto& members = target.get_ref<JsonTree::object_t&>();
  members.reserve(parts.size());
  for (std::size_t i = 0; i < parts.size(); ++i)
  {
    const Place partPlace = place.member(memberNames[i]);
    members.push_back({checkedText(memberNames[i], partPlace), nullptr});
    write(members.back().second, parts[i], partPlace, depth);
  }
}

/// Empties the tree from its leaves to its root.
void takeDown(JsonTree& tree)
{
  if (!tree.is_structured())
    return;
  for (JsonTree& part : tree)
    takeDown(part);
  tree.clear();
}

}  // namespace

DocumentTree::DocumentTree(const ValueView& view, WireForm form) : DocumentTree()
{
  TreeWriter(form).write(_root, view, Place(), 0);
}

DocumentTree::~DocumentTree()
{
  takeDown(_root);
}

}  // namespace ko
