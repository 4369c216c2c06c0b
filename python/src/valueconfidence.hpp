#pragma once

#include <skeigiot/valueconfidence.hpp>

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

/// \file
/// ValueConfidence in Python: one class for a value of any type, which cannot be changed.

namespace binding
{

struct AnyValueConfidence
{
  using Point = std::pair<float, float>;
  using Value = std::variant<bool, std::int64_t, float, Point>;

  Value value;
  float confidence = 0.f;
};

/// Divides a pair (value, confidence).
///
/// \throws pybind11::type_error if it is not such a pair.
AnyValueConfidence anyFromPair(const pybind11::tuple& pair);

/// Defines the class ValueConfidence.
void bindValueConfidence(pybind11::module_& module);

/// Converts between the values of the two; Python's numbers are converted if no precision is lost.
template <typename T>
struct ValueOf;

template <>
struct ValueOf<float>
{
  static bool from(const AnyValueConfidence::Value& any, float& value)
  {
    if (const auto* number = std::get_if<float>(&any))
      value = *number;
    else if (const auto* integer = std::get_if<std::int64_t>(&any))
      value = static_cast<float>(*integer);
    else
      return false;
    return true;
  }
};

template <>
struct ValueOf<bool>
{
  static bool from(const AnyValueConfidence::Value& any, bool& value)
  {
    const auto* truth = std::get_if<bool>(&any);
    if (truth)
      value = *truth;
    return truth;
  }
};

template <typename Integer>
struct IntegerValue
{
  static bool from(const AnyValueConfidence::Value& any, Integer& value)
  {
    const auto* integer = std::get_if<std::int64_t>(&any);
    if (!integer)
      return false;
    value = static_cast<Integer>(*integer);
    if (static_cast<std::int64_t>(value) != *integer)
      throw pybind11::value_error("the value " + std::to_string(*integer) + " is out of range");
    return true;
  }
};

template <>
struct ValueOf<int> : IntegerValue<int>
{};

template <>
struct ValueOf<unsigned int> : IntegerValue<unsigned int>
{};

template <>
struct ValueOf<AnyValueConfidence::Point>
{
  static bool from(const AnyValueConfidence::Value& any, AnyValueConfidence::Point& value)
  {
    const auto* point = std::get_if<AnyValueConfidence::Point>(&any);
    if (point)
      value = *point;
    return point;
  }
};

template <typename T>
AnyValueConfidence anyFrom(const KV::ValueConfidence<T>& source)
{
  using Stored = std::conditional_t<std::is_integral_v<T> && !std::is_same_v<T, bool>, std::int64_t, T>;
  return {static_cast<Stored>(source.value), source.confidence};
}

}  // namespace binding

namespace pybind11::detail
{

template <typename T>
struct type_caster<KV::ValueConfidence<T>>
{
  PYBIND11_TYPE_CASTER(KV::ValueConfidence<T>, const_name("ValueConfidence"));

  /// A ValueConfidence of such a value, or the pair of a value and a confidence where conversions are allowed.
  bool load(handle source, bool convert)
  {
    if (isinstance<binding::AnyValueConfidence>(source))
      return take(source.cast<binding::AnyValueConfidence>());
    if (convert && isinstance<tuple>(source))
      return take(binding::anyFromPair(reinterpret_borrow<tuple>(source)));
    return false;
  }

  static handle cast(const KV::ValueConfidence<T>& source, return_value_policy, handle parent)
  {
    return make_caster<binding::AnyValueConfidence>::cast(binding::anyFrom(source), return_value_policy::move, parent);
  }

private:
  bool take(const binding::AnyValueConfidence& any)
  {
    value.confidence = any.confidence;
    return binding::ValueOf<T>::from(any.value, value.value);
  }
};

}  // namespace pybind11::detail
