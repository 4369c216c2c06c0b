#include "records.hpp"

#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>

#include <gtest/gtest.h>

#include <cctype>
#include <limits>

namespace
{

using ko::Value;

constexpr unsigned seed = 20240611;

class RoundTrip : public ::testing::TestWithParam<std::string>
{
protected:
  /// Returns an object of the record with random contents.
  Value next()
  {
    const Value value = Value::ofType(ko::findStruct(GetParam()));
    records::fillAtRandom(value, _random);
    return value;
  }

private:
  std::mt19937 _random{seed};
};

/// Names a test after the class name of its record.
struct LettersOfTheRecord
{
  std::string operator()(const ::testing::TestParamInfo<std::string>& tested) const
  {
    std::string name;
    for (const char c : tested.param)
    {
      if (std::isalnum(static_cast<unsigned char>(c)))
        name += c;
    }
    return name;
  }
};

TEST_P(RoundTrip, ThroughCborKeepsEveryBit)
{
  for (int i = 0; i < 200; ++i)
  {
    const Value sent = next();
    const Value received = ko::cbor::decode(ko::cbor::encode(sent), ko::findStruct(GetParam()));
    ASSERT_EQ(records::bitsOf(sent), records::bitsOf(received)) << "seed " << seed << ", value " << i << ": " << sent;
    ASSERT_EQ(sent, received);
  }
}

TEST_P(RoundTrip, ThroughJsonKeepsEveryBit)
{
  for (int i = 0; i < 200; ++i)
  {
    const Value sent = next();
    const Value received = ko::json::decode(ko::json::encode(sent), ko::findStruct(GetParam()));
    ASSERT_EQ(records::bitsOf(sent), records::bitsOf(received)) << "seed " << seed << ", value " << i << ": " << sent;
    ASSERT_EQ(sent, received);
  }
}

INSTANTIATE_TEST_SUITE_P(OfEachRecord, RoundTrip, ::testing::ValuesIn(records::classNames()), LettersOfTheRecord());

TEST(RoundTrips, KeepsEveryKindOfFloat)
{
  using Limits = std::numeric_limits<float>;
  for (const float number :
       {0.f, -0.f, 0.1f, -1.f, Limits::min(), Limits::denorm_min(), -Limits::denorm_min(), Limits::max(),
        Limits::lowest(), Limits::epsilon(), Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
  {
    const Value sent = Value::from(KV::Gaze(number, 1.f));
    EXPECT_EQ(records::bitsOf(sent), records::bitsOf(ko::cbor::decode(ko::cbor::encode(sent), ko::typeOf<KV::Gaze>())));
    EXPECT_EQ(records::bitsOf(sent), records::bitsOf(ko::json::decode(ko::json::encode(sent), ko::typeOf<KV::Gaze>())));
  }
}

TEST(RoundTrips, KeepsEveryFloatThatIsPrintedInJson)
{
  std::mt19937 random(seed);
  std::vector<float> sent(100000);
  for (float& number : sent)
    number = records::anyFloat(random);

  const std::string text = ko::json::encode(Value::from(sent));
  const auto received = ko::json::decode<std::vector<float>>(text);

  ASSERT_EQ(sent.size(), received.size());
  for (std::size_t i = 0; i < sent.size(); ++i)
    ASSERT_EQ(records::bitsOf(Value::from(sent[i])), records::bitsOf(Value::from(received[i]))) << "number " << i;
}

TEST(RoundTrips, OfAPersonGivesARecordOfItsOwn)
{
  KV::Person person(7);
  person.personState._setValence(0.5f);
  const auto received = ko::cbor::decode<KV::Person>(ko::cbor::encode(Value::from(person)));
  person.personState._setValence(-1.f);

  EXPECT_EQ(7, received.personID);
  EXPECT_EQ(0.5f, received.personState.personValence().value);
}

}  // namespace
