#pragma once

#include "place.hpp"

#include <ko/typeinterface.hpp>

#include <string>
#include <utility>
#include <vector>

namespace ko
{

/// An object with its type, not owned; or nothing, with both pointers null.
struct ValueView
{
  TypeInterface* type = nullptr;
  void* storage = nullptr;

  explicit operator bool() const { return type != nullptr; }

  /// Returns the interface of the kind that `type` is of.
  template <typename Interface>
  const Interface& as() const
  {
    return static_cast<const Interface&>(*type);
  }
};

/// Returns the kind of an existing object.
inline TypeKind kindOf(const ValueView& view)
{
  return view.type->kind();
}

/// Returns the object inside a dynamic value, through any number of them; any other object as it is.
ValueView held(ValueView view);

/// Returns the number of members of a struct or tuple, or of elements of a list or map; 0 for everything else.
std::size_t sizeOf(const ValueView& view);

/// Returns the members of a struct or tuple, or the elements of a list.
///
/// \throws TypeError with the place of a member whose type is not registered, or `place` if a handle has no record.
std::vector<ValueView> elements(const ValueView& view, const Place& place = {});

/// Returns the keys of a map with their elements.
///
/// \throws TypeError with the `place` of the map if the type of its keys or elements is not registered.
std::vector<std::pair<ValueView, ValueView>> entries(const ValueView& view, const Place& place = {});

/// Whether the parts of the object have names: those of a struct, and of a map with text keys.
bool hasNames(const ValueView& view);

/// Returns those names, in the order of members() and the elements of entries().
///
/// \throws TypeError with the `place` of a map if the type of its elements is not registered.
std::vector<std::string> names(const ValueView& view, const Place& place = {});

/// Returns the parts that have names, in the order of names().
std::vector<ValueView> namedParts(const ValueView& view, const Place& place = {});

}  // namespace ko
