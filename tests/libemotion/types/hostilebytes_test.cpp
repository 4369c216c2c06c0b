#include "records.hpp"

#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/typeerror.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace
{

using ko::Value;
using Bytes = std::vector<std::uint8_t>;

constexpr unsigned seed = 20240612;
constexpr int mutationCount = 20000;

Value somebody()
{
  const Value person = Value::ofType(ko::typeOf<KV::Person>());
  std::mt19937 random(seed);
  records::fillAtRandom(person, random);
  return person;
}

/// Changes the bytes as a broken or malicious sender might.
void mutate(Bytes& bytes, std::mt19937& random)
{
  const auto position = [&] { return static_cast<std::ptrdiff_t>(random() % (bytes.size() + 1)); };
  const auto byte = [&] { return static_cast<std::uint8_t>(random()); };
  for (unsigned count = random() % 4 + 1; count > 0; --count)
  {
    switch (random() % 5)
    {
      case 0:  // another byte
        if (!bytes.empty())
          bytes[random() % bytes.size()] = byte();
        break;
      case 1:  // one bit
        if (!bytes.empty())
          bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1U << random() % 8);
        break;
      case 2:  // cut off
        bytes.erase(bytes.begin() + position(), bytes.end());
        break;
      case 3:  // a run of one byte inserted
        bytes.insert(bytes.begin() + position(), random() % 300, byte());
        break;
      default:  // a part repeated elsewhere
      {
        const auto [from, to] = std::minmax({position(), position()});
        const Bytes part(bytes.begin() + from, bytes.begin() + to);
        bytes.insert(bytes.begin() + position(), part.begin(), part.end());
      }
    }
  }
}

struct Outcome
{
  int accepted = 0;
  int refused = 0;
};

/// Decodes many mutations of `original`; anything but a value or a TypeError fails the test.
Outcome decodeMutations(const Bytes& original, const std::function<Value(const Bytes&)>& decode)
{
  std::mt19937 random(seed);
  Outcome outcome;
  for (int i = 0; i < mutationCount; ++i)
  {
    Bytes bytes = original;
    mutate(bytes, random);
    try
    {
      const Value value = decode(bytes);
      outcome.accepted += value.type() == ko::typeOf<KV::Person>() ? 1 : 0;
    }
    catch (const ko::TypeError& error)
    {
      outcome.refused += *error.what() != '\0' ? 1 : 0;
    }
  }
  return outcome;
}

TEST(HostileBytes, AreDecodedFromCborOrRefused)
{
  const Outcome outcome = decodeMutations(ko::cbor::encode(somebody()), [](const Bytes& bytes) {
    return ko::cbor::decode(bytes, ko::typeOf<KV::Person>());
  });
  EXPECT_EQ(mutationCount, outcome.accepted + outcome.refused) << "seed " << seed;
  EXPECT_GT(outcome.accepted, 0);
  EXPECT_GT(outcome.refused, outcome.accepted);
}

TEST(HostileBytes, AreDecodedFromJsonOrRefused)
{
  const std::string text = ko::json::encode(somebody());
  const Outcome outcome = decodeMutations({text.begin(), text.end()}, [](const Bytes& bytes) {
    return ko::json::decode(std::string(bytes.begin(), bytes.end()), ko::typeOf<KV::Person>());
  });
  EXPECT_EQ(mutationCount, outcome.accepted + outcome.refused) << "seed " << seed;
  EXPECT_GT(outcome.accepted, 0);
  EXPECT_GT(outcome.refused, outcome.accepted);
}

TEST(HostileBytes, CutAnywhereAreRefused)
{
  const Bytes bytes = ko::cbor::encode(somebody());
  for (std::size_t length = 0; length < bytes.size(); ++length)
  {
    const Bytes beginning(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    EXPECT_THROW(ko::cbor::decode(beginning, ko::typeOf<KV::Person>()), ko::TypeError) << length << " bytes";
  }
}

TEST(HostileBytes, OfAnyKindAreDecodedOrRefused)
{
  std::mt19937 random(seed);
  int decided = 0;
  for (int i = 0; i < mutationCount; ++i)
  {
    Bytes bytes(random() % 64);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
    try
    {
      const Value value = ko::cbor::decode(bytes);
      decided += ko::cbor::decode(ko::cbor::encode(value)) == value ? 1 : 0;
    }
    catch (const ko::TypeError&)
    {
      ++decided;
    }
  }
  EXPECT_EQ(mutationCount, decided) << "seed " << seed;
}

TEST(HostileBytes, OfTheWrongTypeAreRefusedWithThePath)
{
  const std::string text =
      R"({"personID": 1, "personState": {"valence": {"value": 0, "confidence": 0}, "attention": {"value": 0, "confidence": 0},)"
      R"("bodyLanguageState": {"ease": {"level": [], "confidence": 0}}, "smile": {"value": 0, "confidence": 0},)"
      R"("expressions": null}})";
  const Bytes bytes = ko::cbor::encode(ko::json::decode(text));
  try
  {
    ko::cbor::decode(bytes, ko::typeOf<KV::Person>());
    FAIL() << "no exception";
  }
  catch (const ko::TypeError& error)
  {
    EXPECT_EQ("personState.bodyLanguageState.ease.level", error.path());
    EXPECT_STREQ("personState.bodyLanguageState.ease.level: expected float, got list of any", error.what());
  }
}

}  // namespace
