#include "target.hpp"

#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/type.hpp>
#include <ko/typeerror.hpp>
#include <ko/value.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace fuzz
{

namespace
{

using ko::Value;
using Bytes = std::vector<std::uint8_t>;

/// The types into which the bytes are decoded; together they have every kind.
const std::vector<ko::TypeInterface*>& wantedTypes()
{
  using Nested = std::map<std::string, std::vector<std::optional<std::pair<std::int8_t, double>>>>;
  using Keyed = std::map<std::uint16_t, std::tuple<bool, float, std::string, std::uint64_t>>;
  static const std::vector<ko::TypeInterface*> types = {
      ko::typeOf<KV::Person>(), ko::typeOf<KV::Expressions>(), ko::typeOf<KV::ValueConfidence<unsigned int>>(),
      ko::typeOf<Nested>(),     ko::typeOf<Keyed>(),           ko::typeOf<Value>()};
  return types;
}

/// Everything that was decoded can be encoded both ways, and decodes to the same.
void expectRoundTrips(const Value& value, ko::TypeInterface* type)
{
  const std::string text = ko::json::encode(value);
  if (type->kind() != ko::TypeKind::Dynamic)  // in which a number that JSON cannot write is a text
    expect(ko::json::decode(text, type) == value, "a value comes back from JSON");
  expect(ko::cbor::decode(ko::cbor::encode(value), type) == value, "a value comes back from CBOR");
  expect(value.detached() == value, "a detached value is the same");
}

/// A value without a given type.
void expectRoundTrips(const Value& value)
{
  ko::json::encode(value);
  expect(ko::cbor::decode(ko::cbor::encode(value)) == value, "a dynamic value comes back from CBOR");
}

/// Passes each value that can be decoded to `check`.
template <typename Decode, typename Check>
void decodeAnd(Check check, Decode decode)
{
  Value value;
  try
  {
    value = decode();
  }
  catch (const ko::TypeError& error)
  {
    expect(*error.what() != '\0', "what cannot be decoded is complained of");
    return;
  }
  check(value);
}

/// Decodes the bytes by `decode(bytes)` and `decode(bytes, type)`.
template <typename Encoded, typename Decode>
void decodeAsAnything(const Encoded& encoded, Decode decode)
{
  decodeAnd([](const Value& value) { expectRoundTrips(value); }, [&] { return decode(encoded); });
  for (ko::TypeInterface* type : wantedTypes())
    decodeAnd([type](const Value& value) { expectRoundTrips(value, type); }, [&] { return decode(encoded, type); });
}

}  // namespace

void fuzzJson(std::string_view input)
{
  decodeAsAnything(input, [](const auto&... arguments) { return ko::json::decode(arguments...); });
}

void fuzzCbor(std::string_view input)
{
  decodeAsAnything(Bytes(input.begin(), input.end()),
                   [](const auto&... arguments) { return ko::cbor::decode(arguments...); });
}

}  // namespace fuzz
