#include <ko/value.hpp>

#include "comparison.hpp"
#include "conversion.hpp"
#include "valueview.hpp"

#include <ko/json.hpp>
#include <ko/typeerror.hpp>

#include <boost/core/demangle.hpp>

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace ko
{

namespace
{

ValueView contents(const Value& value)
{
  return held({value.type(), value.storage()});
}

Value copyOfHeld(const ValueView& view)
{
  const ValueView inner = held(view);
  return Value::copyOf(inner.type, inner.storage);
}

[[noreturn]] void throwNoSuchMember(const std::string& member)
{
  throw std::out_of_range("The value has no member " + member + ".");
}

std::size_t indexOf(const ValueView& view, std::string_view name)
{
  const std::vector<std::string> known = hasNames(view) ? names(view) : std::vector<std::string>();
  const auto found = std::find(known.begin(), known.end(), name);
  if (found == known.end())
    throwNoSuchMember('"' + shortened(name, 64) + '"');
  return static_cast<std::size_t>(found - known.begin());
}

void setMember(const ValueView& view, std::size_t index, const Value& value)
{
  const auto& type = view.as<StructTypeInterface>();
  TypeInterface* memberType = type.memberTypes()[index];
  const Value fitting = converted({value.type(), value.storage()}, memberType, {});
  if (!type.set(view.storage, index, fitting.storage()))
    throw TypeError("", "the handle has no record");
}

}  // namespace

Value::Value(const Value& other)
  : _type(other._type), _storage(other._type ? other._type->clone(other._storage) : nullptr)
{}

Value::Value(Value&& other) noexcept
  : _type(std::exchange(other._type, nullptr)), _storage(std::exchange(other._storage, nullptr))
{}

Value& Value::operator=(Value other) noexcept
{
  swap(*this, other);
  return *this;
}

Value::~Value()
{
  if (_type)
    _type->destroy(_storage);
}

void swap(Value& left, Value& right) noexcept
{
  std::swap(left._type, right._type);
  std::swap(left._storage, right._storage);
}

Value Value::from(const char* text)
{
  return from(std::string(text));
}

Value Value::copyOf(TypeInterface* type, void* storage)
{
  Value value;
  if (type)
    value._storage = type->clone(storage);
  value._type = type;
  return value;
}

Value Value::ofType(TypeInterface* type)
{
  if (!type)
    throw std::invalid_argument("A value needs a type.");
  Value value;
  value._storage = type->initializeStorage();
  value._type = type;
  return value;
}

Value Value::detached() const
{
  ConversionRules rules;
  rules.rebuildSameType = true;
  return isEmpty() ? Value() : converted({_type, _storage}, _type, rules);
}

Value Value::convertedTo(TypeInterface* type) const
{
  if (!type)
    throw std::invalid_argument("A value needs a type.");
  return converted({_type, _storage}, type, {});
}

std::size_t Value::size() const
{
  return sizeOf(contents(*this));
}

std::vector<std::string> Value::names() const
{
  const ValueView view = contents(*this);
  return hasNames(view) ? ko::names(view) : std::vector<std::string>();
}

Value Value::at(std::size_t index) const
{
  const ValueView view = contents(*this);
  if (index >= sizeOf(view))
    throwNoSuchMember(std::to_string(index));
  if (kindOf(view) == TypeKind::Map)
    return copyOfHeld(entries(view)[index].second);
  return copyOfHeld(elements(view)[index]);
}

Value Value::at(std::string_view name) const
{
  const ValueView view = contents(*this);
  const std::size_t index = indexOf(view, name);
  return copyOfHeld(namedParts(view)[index]);
}

void Value::set(std::size_t index, const Value& value)
{
  const ValueView view = contents(*this);
  if (!view || (kindOf(view) != TypeKind::Struct && kindOf(view) != TypeKind::Tuple) || index >= sizeOf(view))
    throwNoSuchMember(std::to_string(index));
  setMember(view, index, value);
}

void Value::set(std::string_view name, const Value& value)
{
  set(indexOf(contents(*this), name), value);
}

int Value::compare(const Value& other) const
{
  return ko::compare({_type, _storage}, {other._type, other._storage});
}

void Value::throwNotRegistered(const std::type_info& info)
{
  throw TypeError("", "no type is registered for " + detail::normalizeClassName(boost::core::demangle(info.name())));
}

std::ostream& operator<<(std::ostream& stream, const Value& value)
{
  return stream << json::encode(value);
}

}  // namespace ko
