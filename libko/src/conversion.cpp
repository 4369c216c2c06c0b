#include "conversion.hpp"

#include "floattext.hpp"

#include <ko/typeerror.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace ko
{

namespace
{

class Conversion
{
public:
  explicit Conversion(const ConversionRules& rules) : _rules(rules) {}

  Value convert(const ValueView& source, TypeInterface* type, const Place& place) const;

private:
  void _fill(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillBool(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillInt(const ValueView& target, const ValueView& source, const Place& place) const;
  std::optional<double> _number(const ValueView& source) const;
  void _fillFloat(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillString(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillList(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillMap(const ValueView& target, const ValueView& source, const Place& place) const;
  void _insert(const ValueView& target, const ValueView& key, const ValueView& element, const Place& place) const;
  void _fillOptional(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillTuple(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillStruct(const ValueView& target, const ValueView& source, const Place& place) const;
  void _fillDynamic(const ValueView& target, const ValueView& source, const Place& place) const;

  ConversionRules _rules;
};

[[noreturn]] void throwMisfit(const ValueView& target, const ValueView& source, const Place& place)
{
  throw TypeError(place.path(),
                  "expected " + typeName(target.type) + ", got " + (source ? typeName(source.type) : "nothing"));
}

[[noreturn]] void throwOutOfRange(const ValueView& target, const std::string& number, const Place& place)
{
  throw TypeError(place.path(), number + " does not fit into " + typeName(target.type));
}

bool isListOrTuple(const ValueView& view)
{
  return view && (kindOf(view) == TypeKind::List || kindOf(view) == TypeKind::Tuple);
}

/// Returns the value of an optional, or nothing if it has none; any other object as it is.
ValueView withoutOptional(ValueView view)
{
  while (view && kindOf(view) == TypeKind::Optional)
  {
    const auto& type = view.as<OptionalTypeInterface>();
    void* value = type.value(view.storage);
    view = value ? held({type.valueType(), value}) : ValueView{};
  }
  return view;
}

/// Returns the object without the wrappers around it that a target of this kind does not have.
ValueView unwrappedFor(TypeKind target, const ValueView& source)
{
  if (target == TypeKind::Dynamic)
    return source;
  return target == TypeKind::Optional ? held(source) : withoutOptional(held(source));
}

/// An integer of 64 bits, signed or not.
struct Integer
{
  std::int64_t bits;
  bool isSigned;
};

Integer integerOf(const ValueView& view)
{
  const auto& type = view.as<IntTypeInterface>();
  return {type.value(view.storage), type.isSigned()};
}

bool isInRange(const Integer& integer, const IntTypeInterface& type)
{
  const auto width = static_cast<unsigned>(type.size() * 8);
  const std::uint64_t greatest = ~std::uint64_t{0} >> (64U - width + (type.isSigned() ? 1U : 0U));
  if (integer.isSigned && integer.bits < 0)
    return type.isSigned() && static_cast<std::uint64_t>(-(integer.bits + 1)) <= greatest;
  return static_cast<std::uint64_t>(integer.bits) <= greatest;
}

/// Returns a number as an integer of 64 bits, if it is whole and fits.
std::optional<Integer> wholeNumber(double number)
{
  constexpr double twoTo63 = 9223372036854775808.0;
  if (!(number >= -twoTo63 && number < 2 * twoTo63) || std::trunc(number) != number)
    return std::nullopt;
  if (number < 0)
    return Integer{static_cast<std::int64_t>(number), true};
  return Integer{static_cast<std::int64_t>(static_cast<std::uint64_t>(number)), false};
}

std::string intText(const Integer& integer)
{
  return integer.isSigned ? std::to_string(integer.bits) : std::to_string(static_cast<std::uint64_t>(integer.bits));
}

Value Conversion::convert(const ValueView& source, TypeInterface* type, const Place& place) const
{
  if (!type)
    throw TypeError(place.path(), "the type is not registered");
  const ValueView inner = unwrappedFor(type->kind(), source);
  if (inner.type == type && !_rules.rebuildSameType)
    return Value::copyOf(type, inner.storage);
  Value target = Value::ofType(type);
  _fill({type, target.storage()}, inner, place);
  return target;
}

void Conversion::_fill(const ValueView& target, const ValueView& source, const Place& place) const
{
  switch (kindOf(target))
  {
    case TypeKind::Bool:
      return _fillBool(target, source, place);
    case TypeKind::Int:
      return _fillInt(target, source, place);
    case TypeKind::Float:
      return _fillFloat(target, source, place);
    case TypeKind::String:
      return _fillString(target, source, place);
    case TypeKind::List:
      return _fillList(target, source, place);
    case TypeKind::Map:
      return _fillMap(target, source, place);
    case TypeKind::Optional:
      return _fillOptional(target, source, place);
    case TypeKind::Tuple:
      return _fillTuple(target, source, place);
    case TypeKind::Struct:
      return _fillStruct(target, source, place);
    case TypeKind::Dynamic:
      return _fillDynamic(target, source, place);
  }
  throwMisfit(target, source, place);  // the target is of an unknown kind
}

void Conversion::_fillBool(const ValueView& target, const ValueView& source, const Place& place) const
{
  if (!source || kindOf(source) != TypeKind::Bool)
    throwMisfit(target, source, place);
  target.as<BoolTypeInterface>().assign(target.storage, source.as<BoolTypeInterface>().value(source.storage));
}

void Conversion::_fillInt(const ValueView& target, const ValueView& source, const Place& place) const
{
  const auto& type = target.as<IntTypeInterface>();
  const bool isInt = source && kindOf(source) == TypeKind::Int;
  const bool isFloat = source && kindOf(source) == TypeKind::Float;
  if (!isInt && !isFloat)
    throwMisfit(target, source, place);

  const std::optional<Integer> integer =
      isInt ? integerOf(source) : wholeNumber(source.as<FloatTypeInterface>().value(source.storage));
  if (!integer || !isInRange(*integer, type))
    throwOutOfRange(target, isInt ? intText(*integer) : floatText(*_number(source)), place);
  type.assign(target.storage, integer->bits);
}

std::optional<double> Conversion::_number(const ValueView& source) const
{
  if (!source)
    return std::nullopt;
  if (kindOf(source) == TypeKind::Float)
    return source.as<FloatTypeInterface>().value(source.storage);
  if (kindOf(source) == TypeKind::Int)
  {
    const Integer integer = integerOf(source);
    return integer.isSigned ? static_cast<double>(integer.bits)
                            : static_cast<double>(static_cast<std::uint64_t>(integer.bits));
  }
  if (kindOf(source) == TypeKind::String && _rules.nonFiniteAsText)
    return nonFiniteFromText(source.as<StringTypeInterface>().value(source.storage));
  return std::nullopt;
}

void Conversion::_fillFloat(const ValueView& target, const ValueView& source, const Place& place) const
{
  constexpr double firstBeyondFloat = 0x1.ffffffp+127;  // the least that rounds to infinity

  const auto& type = target.as<FloatTypeInterface>();
  const std::optional<double> number = _number(source);
  if (!number)
    throwMisfit(target, source, place);
  if (type.size() == sizeof(float) && std::isfinite(*number) && std::abs(*number) >= firstBeyondFloat)
    throwOutOfRange(target, floatText(*number), place);
  type.assign(target.storage, *number);
}

void Conversion::_fillString(const ValueView& target, const ValueView& source, const Place& place) const
{
  if (!source || kindOf(source) != TypeKind::String)
    throwMisfit(target, source, place);
  target.as<StringTypeInterface>().value(target.storage) = source.as<StringTypeInterface>().value(source.storage);
}

void Conversion::_fillList(const ValueView& target, const ValueView& source, const Place& place) const
{
  if (!isListOrTuple(source))
    throwMisfit(target, source, place);
  const auto& type = target.as<ListTypeInterface>();
  std::size_t index = 0;
  for (const ValueView& element : elements(source, place))
    type.append(target.storage, convert(element, type.elementType(), place.element(index++)).storage());
}

/// Returns the entries of a map, or of a list of pairs.
std::vector<std::pair<ValueView, ValueView>> unnamedEntries(const ValueView& target, const ValueView& source,
                                                            const Place& place)
{
  if (source && kindOf(source) == TypeKind::Map)
    return entries(source, place);
  if (!isListOrTuple(source))
    throwMisfit(target, source, place);

  std::vector<std::pair<ValueView, ValueView>> pairs;
  for (const ValueView& element : elements(source, place))
  {
    const ValueView pair = held(element);
    if (!isListOrTuple(pair) || sizeOf(pair) != 2)
      throw TypeError(place.element(pairs.size()).path(), "expected a key with its element");
    const std::vector<ValueView> keyAndElement = elements(pair, place.element(pairs.size()));
    pairs.emplace_back(keyAndElement[0], keyAndElement[1]);
  }
  return pairs;
}

void Conversion::_fillMap(const ValueView& target, const ValueView& source, const Place& place) const
{
  if (!hasNames(source))
  {
    std::size_t index = 0;
    for (const auto& [key, element] : unnamedEntries(target, source, place))
      _insert(target, key, element, place.element(index++));
    return;
  }
  std::vector<std::string> keys = names(source, place);
  const std::vector<ValueView> parts = namedParts(source, place);
  for (std::size_t i = 0; i < parts.size(); ++i)
    _insert(target, {typeOf<std::string>(), &keys[i]}, parts[i], place.member(keys[i]));
}

void Conversion::_insert(const ValueView& target, const ValueView& key, const ValueView& element,
                         const Place& place) const
{
  const auto& type = target.as<MapTypeInterface>();
  const Value newKey = convert(key, type.keyType(), place);
  const Value newElement = convert(element, type.elementType(), place);
  type.insert(target.storage, newKey.storage(), newElement.storage());
}

void Conversion::_fillOptional(const ValueView& target, const ValueView& source, const Place& place) const
{
  const ValueView value = withoutOptional(source);
  if (!value)
    return;  // a new optional is empty
  const auto& type = target.as<OptionalTypeInterface>();
  type.assign(target.storage, convert(value, type.valueType(), place).storage());
}

void Conversion::_fillTuple(const ValueView& target, const ValueView& source, const Place& place) const
{
  const auto& type = target.as<StructTypeInterface>();
  const std::vector<TypeInterface*> types = type.memberTypes();
  if (!isListOrTuple(source))
    throwMisfit(target, source, place);
  const std::vector<ValueView> members = elements(source, place);
  if (members.size() != types.size())
    throw TypeError(place.path(), "expected " + std::to_string(types.size()) + " members for " + typeName(target.type) +
                                      ", got " + std::to_string(members.size()));
  for (std::size_t i = 0; i < members.size(); ++i)
    type.set(target.storage, i, convert(members[i], types[i], place.element(i)).storage());
}

/// Returns the names that are not among the excluded; one side is a struct's, and so is short.
std::vector<std::string> without(const std::vector<std::string>& all, const std::vector<std::string>& excluded)
{
  std::vector<std::string> rest;
  std::copy_if(all.begin(), all.end(), std::back_inserter(rest), [&](const std::string& name) {
    return std::find(excluded.begin(), excluded.end(), name) == excluded.end();
  });
  return rest;
}

/// Refuses a source whose members differ from the target's, unless one of the two structs accepts the difference.
void requireSameMembers(const ValueView& target, const ValueView& source, const Place& place)
{
  const auto& type = target.as<StructTypeInterface>();
  const std::vector<std::string> own = type.elementsName();
  const std::vector<std::string> theirs = names(source, place);
  const MemberDifference difference{without(theirs, own), without(own, theirs)};
  if (type.convertFrom(difference))
    return;
  if (kindOf(source) == TypeKind::Struct && source.as<StructTypeInterface>().convertTo(difference))
    return;
  throw TypeError(place.path(),
                  type.className() + " has the members " + listed(own) + ", the other side has " + listed(theirs));
}

void Conversion::_fillStruct(const ValueView& target, const ValueView& source, const Place& place) const
{
  if (!hasNames(source))
    throwMisfit(target, source, place);
  requireSameMembers(target, source, place);

  const auto& type = target.as<StructTypeInterface>();
  const std::vector<std::string> own = type.elementsName();
  const std::vector<TypeInterface*> types = type.memberTypes();
  const std::vector<std::string> theirs = names(source, place);
  const std::vector<ValueView> parts = namedParts(source, place);
  for (std::size_t i = 0; i < own.size(); ++i)
  {
    const auto found = static_cast<std::size_t>(std::find(theirs.begin(), theirs.end(), own[i]) - theirs.begin());
    if (found < parts.size())
      type.set(target.storage, i, convert(parts[found], types[i], place.member(own[i])).storage());
  }
}

void Conversion::_fillDynamic(const ValueView& target, const ValueView& source, const Place& place) const
{
  const ValueView inner = held(source);
  if (inner)
    target.as<DynamicTypeInterface>().value(target.storage) = convert(inner, inner.type, place);
}

}  // namespace

Value converted(const ValueView& source, TypeInterface* type, const ConversionRules& rules)
{
  return Conversion(rules).convert(source, type, Place());
}

}  // namespace ko
