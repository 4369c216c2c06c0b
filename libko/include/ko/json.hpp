#pragma once

#include <ko/api.hpp>
#include <ko/type.hpp>
#include <ko/value.hpp>

#include <string>
#include <string_view>

/// Values as JSON text (RFC 8259), for people.
///
/// A struct is an object by member name, a tuple an array, a map with text keys an object and any other map an array of
/// [key, element] arrays, an empty optional null. Floating-point numbers have as few digits as give the same number
/// back; the strings "NaN", "Infinity" and "-Infinity" stand for what JSON has no number for, and are taken for numbers
/// where a floating-point type is expected (not in a dynamic value).
namespace ko::json
{

/// Returns the value as text: on one line, or with `indent` blanks for each level if that is not negative.
///
/// \throws TypeError if a text is not UTF-8, a type is not registered, a handle has no record, or the value is nested
///   deeper than wirelimits::depth.
KO_API std::string encode(const Value& value, int indent = -1);

/// Returns what the text says, as bool, std::int64_t (std::uint64_t if greater), double, std::string,
/// std::vector<Value>, std::map<std::string, Value> or empty.
///
/// \throws TypeError if the text is not JSON, exceeds wirelimits or has a key twice in an object.
KO_API Value decode(std::string_view text);

/// Returns what the text says, as a value of this type.
///
/// \throws TypeError as above, and with the path of the first member that does not fit. An object with other or fewer
///   members than the struct is refused, with both lists.
/// \throws std::invalid_argument "A value needs a type." if `type` is null.
KO_API Value decode(std::string_view text, TypeInterface* type);

/// As above, as an object.
template <typename T>
T decode(std::string_view text)
{
  return decode(text, typeOf<T>()).template to<T>();
}

}  // namespace ko::json
