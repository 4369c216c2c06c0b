#pragma once

#include <ko/api.hpp>
#include <ko/type.hpp>
#include <ko/value.hpp>

#include <cstdint>
#include <vector>

/// Values as CBOR (RFC 8949), for the wire between programs.
///
/// A struct is a map by member name, a tuple an array, a map with text keys a map and any other map an array of
/// [key, element] arrays, an empty optional null. Numbers have the shortest form that keeps their value; NaN and the
/// infinities are half-precision numbers, and a NaN comes back as a NaN, without its payload.
namespace ko::cbor
{

/// Returns the value as bytes.
///
/// \throws TypeError if a text is not UTF-8, a type is not registered, a handle has no record, or the value is nested
///   deeper than wirelimits::depth.
KO_API std::vector<std::uint8_t> encode(const Value& value);

/// Returns what the bytes say, as bool, std::int64_t (std::uint64_t if greater), double, std::string,
/// std::vector<Value>, std::map<std::string, Value> or empty.
///
/// \throws TypeError if the bytes are not one CBOR item, exceed wirelimits, have a key twice in a map, or hold what no
///   value is made of: tags, byte strings, keys that are no text, integers beyond 64 bits.
KO_API Value decode(const std::vector<std::uint8_t>& bytes);

/// Returns what the bytes say, as a value of this type.
///
/// \throws TypeError as above, and with the path of the first member that does not fit. A map with other or fewer
///   members than the struct is refused, with both lists.
/// \throws std::invalid_argument "A value needs a type." if `type` is null.
KO_API Value decode(const std::vector<std::uint8_t>& bytes, TypeInterface* type);

/// As above, as an object.
template <typename T>
T decode(const std::vector<std::uint8_t>& bytes)
{
  return decode(bytes, typeOf<T>()).template to<T>();
}

}  // namespace ko::cbor
