#include "comparison.hpp"

#include <algorithm>
#include <cmath>

namespace ko
{

namespace
{

template <typename T>
int order(const T& left, const T& right)
{
  return left < right ? -1 : right < left ? 1 : 0;
}

template <typename Interface>
int compareAs(const ValueView& left, const ValueView& right)
{
  return order(left.as<Interface>().value(left.storage), right.as<Interface>().value(right.storage));
}

int compareInts(const ValueView& left, const ValueView& right)
{
  const auto isNegative = [](const ValueView& view) {
    const auto& type = view.as<IntTypeInterface>();
    return type.isSigned() && type.value(view.storage) < 0;
  };
  if (isNegative(left) != isNegative(right))
    return isNegative(left) ? -1 : 1;
  // Of the same sign, the bits order the values.
  const auto bits = [](const ValueView& view) {
    return static_cast<std::uint64_t>(view.as<IntTypeInterface>().value(view.storage));
  };
  return order(bits(left), bits(right));
}

int compareFloats(const ValueView& left, const ValueView& right)
{
  const double leftValue = left.as<FloatTypeInterface>().value(left.storage);
  const double rightValue = right.as<FloatTypeInterface>().value(right.storage);
  if (std::isnan(leftValue) || std::isnan(rightValue))
    return order(std::isnan(leftValue), std::isnan(rightValue));
  return order(leftValue, rightValue);
}

int compareOptionals(const ValueView& left, const ValueView& right)
{
  const auto value = [](const ValueView& view) -> ValueView {
    const auto& type = view.as<OptionalTypeInterface>();
    void* storage = type.value(view.storage);
    return storage ? ValueView{type.valueType(), storage} : ValueView{};
  };
  return compare(value(left), value(right));
}

int compareElements(const ValueView& left, const ValueView& right)
{
  const std::vector<ValueView> leftElements = elements(left);
  const std::vector<ValueView> rightElements = elements(right);
  for (std::size_t i = 0; i < std::min(leftElements.size(), rightElements.size()); ++i)
  {
    if (const int result = compare(leftElements[i], rightElements[i]))
      return result;
  }
  return order(leftElements.size(), rightElements.size());
}

int compareMaps(const ValueView& left, const ValueView& right)
{
  const auto leftEntries = entries(left);
  const auto rightEntries = entries(right);
  for (std::size_t i = 0; i < std::min(leftEntries.size(), rightEntries.size()); ++i)
  {
    if (const int result = compare(leftEntries[i].first, rightEntries[i].first))
      return result;
    if (const int result = compare(leftEntries[i].second, rightEntries[i].second))
      return result;
  }
  return order(leftEntries.size(), rightEntries.size());
}

int compareStructs(const ValueView& left, const ValueView& right)
{
  const int byName = order(left.as<StructTypeInterface>().className(), right.as<StructTypeInterface>().className());
  return byName != 0 ? byName : compareElements(left, right);
}

int compareSameKind(const ValueView& left, const ValueView& right)
{
  switch (kindOf(left))
  {
    case TypeKind::Bool:
      return compareAs<BoolTypeInterface>(left, right);
    case TypeKind::Int:
      return compareInts(left, right);
    case TypeKind::Float:
      return compareFloats(left, right);
    case TypeKind::String:
      return compareAs<StringTypeInterface>(left, right);
    case TypeKind::Optional:
      return compareOptionals(left, right);
    case TypeKind::List:
    case TypeKind::Tuple:
      return compareElements(left, right);
    case TypeKind::Map:
      return compareMaps(left, right);
    case TypeKind::Struct:
      return compareStructs(left, right);
    default:  // of an unknown kind; compare() has already unpacked dynamic values
      return 0;
  }
}

}  // namespace

int compare(ValueView left, ValueView right)
{
  left = held(left);
  right = held(right);
  if (!left || !right)
    return order(static_cast<bool>(left), static_cast<bool>(right));
  const int byKind = order(kindOf(left), kindOf(right));
  return byKind != 0 ? byKind : compareSameKind(left, right);
}

}  // namespace ko
