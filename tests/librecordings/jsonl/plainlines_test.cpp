#include "jsonl/flatjson.hpp"
#include "jsonl/observationjsontree.hpp"
#include "librecordings/bits.hpp"
#include "librecordings/randomentries.hpp"
#include "librecordings/support.hpp"

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace
{
using KV::recordings::FlatJson;
using KV::recordings::isPlainStep;
using KV::recordings::MemberError;
using KV::recordings::NotPlain;

/// The result of reading a text: the step, written again, or the error.
template <typename Read>
std::string outcomeOf(Read read)
{
  try
  {
    return KV::recordings::stepToJson(read());
  }
  catch (const MemberError& error)
  {
    return "error at '" + error.member() + "': " + error.what();
  }
}

std::string streamed(const KV::recordings::StreamLine& line)
{
  std::string text = KV::recordings::stepToJson(line.entry);
  for (const auto& boundary :
       {line.boundaries.positive, line.boundaries.negative, line.boundaries.confidence, line.boundaries.lookingAtRobot,
        line.boundaries.strictlyLookingAtRobot, line.boundaries.excited})
    text += ' ' + (boundary ? std::to_string(*boundary) : "none");
  for (const std::int32_t person : line.leaving)
    text += ' ' + std::to_string(person);
  return text;
}

template <typename Read>
std::string streamOutcomeOf(Read read)
{
  try
  {
    return streamed(read());
  }
  catch (const MemberError& error)
  {
    return "error at '" + error.member() + "': " + error.what();
  }
}

void expectBothWaysToAgree(const std::string& text)
{
  ASSERT_EQ(outcomeOf([&] { return KV::recordings::stepFromJsonTree(text); }),
            outcomeOf([&] { return KV::recordings::stepFromJson(text); }))
      << text;
  for (const auto& arrival : {boost::optional<ko::SystemClock::time_point>(), boost::make_optional(support::timeOf(9))})
    ASSERT_EQ(streamOutcomeOf([&] { return KV::recordings::streamLineFromJsonTree(text, arrival); }),
              streamOutcomeOf([&] { return KV::recordings::streamLineFromJson(text, arrival); }))
        << text;
}

std::string smile(const std::string& value)
{
  return R"({"time":5,"person":1,"observation":{"smile":{"value":)" + value + R"(,"confidence":1}}})";
}

TEST(PlainJsonLines, HoldTheSameWithAndWithoutATree)
{
  constexpr std::uint32_t seed = 4;
  SCOPED_TRACE("seed " + std::to_string(seed));
  support::RandomEntries entries(seed);
  int plain = 0;
  for (int i = 0; i < 2000; ++i)
  {
    const std::string line = KV::recordings::stepToJson(entries.next());
    plain += static_cast<int>(isPlainStep(line));
    expectBothWaysToAgree(line);
  }
  EXPECT_GT(plain, 500) << "few lines were read without a tree";
}

TEST(PlainJsonLines, HoldTheSameHoweverTheyAreDamaged)
{
  constexpr std::uint32_t seed = 5;
  SCOPED_TRACE("seed " + std::to_string(seed));
  support::RandomEntries entries(seed);
  std::mt19937 random(seed);
  const std::string pieces = "{}[]\",:\\0123456789+-.eEtrufalsn \t\r\n\x7F\x01\xC3\xA4";
  const std::vector<std::string> words = {"null",    "true",  "-0",       "1e400", "1e-60", "18446744073709551616",
                                          "\"NaN\"", "\"a\"", "\"time\"", "00",    "{}",    "[]"};
  for (int i = 0; i < 4000; ++i)
  {
    std::string line = KV::recordings::stepToJson(entries.next());
    for (std::size_t damages = 1 + random() % 3; damages > 0; --damages)
    {
      const std::size_t place = random() % line.size();
      switch (random() % 5)
      {
        case 0:
          line.erase(place, 1 + random() % 5);
          break;
        case 1:
          line.insert(place, 1, pieces[random() % pieces.size()]);
          break;
        case 2:
          line[place] = static_cast<char>(random() % 256);
          break;
        case 3:
          line.insert(place, words[random() % words.size()]);
          break;
        default:
          line.insert(random() % line.size(), line.substr(place, random() % 40));
      }
      if (line.empty())
        line = " ";
    }
    expectBothWaysToAgree(line);
  }
}

TEST(PlainJsonLines, HoldNumbersWithTheSameBits)
{
  for (const char* number : {"0", "-0", "0.0", "-0.0", "1", "-1", "16777217", "-16777217", "9223372036854775807",
                             "18446744073709551615", "-9223372036854775808", "0.1", "1e10", "1E+10", "1.5e-3",
                             "3.4028235e38", "1.17549435e-38", "7.0000001", "0.30000001192092896"})
  {
    EXPECT_TRUE(isPlainStep(smile(number))) << number;
    expectBothWaysToAgree(smile(number));
  }
  std::mt19937 random(6);
  for (int i = 0; i < 5000; ++i)
    expectBothWaysToAgree(smile(std::to_string(random()) + '.' + std::to_string(random()) + 'e' +
                                std::to_string(static_cast<int>(random() % 90) - 50)));
}

TEST(PlainJsonLines, LeaveEverythingElseToTheTree)
{
  const std::string deep = R"({"time":1,"stop":)" + std::string(8, '[') + std::string(8, ']') + "}";
  std::string many = R"({"time":1,"stop":[)";
  for (int i = 0; i < 700; ++i)
    many += R"("s",)";
  many += R"("s"]})";
  for (const std::string& line : {std::string(),
                                  std::string("null"),
                                  std::string("[]"),
                                  std::string(R"({"time":1)"),
                                  std::string(R"({"time":1}})"),
                                  std::string(R"({"time":1,})"),
                                  std::string(R"({"time":01})"),
                                  std::string(R"({"time":-})"),
                                  std::string(R"({"time":1.})"),
                                  std::string(R"({"time":1e})"),
                                  std::string(R"({"time":.5})"),
                                  std::string(R"({"time":+1})"),
                                  std::string(R"({"time":-1})"),
                                  std::string(R"({"time":1.0})"),
                                  std::string(R"({"time":"1"})"),
                                  std::string(R"({"time":18446744073709551616})"),
                                  std::string(R"({"time":tru})"),
                                  std::string(R"({"seen":true})"),
                                  std::string(R"({"time":1,"time":1})"),
                                  std::string(R"({"time":1,"other":1})"),
                                  std::string(R"({"time":1,"stop":["a\u0041"]})"),
                                  std::string("{\"time\":1,\"stop\":[\"a\tb\"]}"),
                                  std::string("{\"time\":1,\"stop\":[\"\x80\"]}"),
                                  std::string("{\"time\":1,\"stop\":[\"\xC3\"]}"),
                                  std::string("{\"time\":1,\"stop\":[\"\xED\xA0\x80\"]}"),
                                  std::string("{\"time\":1}\0", 11),
                                  std::string("\xEF\xBB\xBF{\"time\":1}"),
                                  smile("1e39"),
                                  smile("1e-60"),
                                  smile("18446744073709551616"),
                                  smile("null"),
                                  smile("\"nan\""),
                                  smile("true"),
                                  deep,
                                  many})
  {
    EXPECT_FALSE(isPlainStep(line)) << line;
    expectBothWaysToAgree(line);
  }
}

TEST(PlainJsonLines, MayHaveSpaceAndNamesInUtf8)
{
  for (const char* line :
       {" { \"time\" : 1 , \"stop\" : [ \"a\" , \"b\" ] } \r", "{\"time\":1,\"person\":2,\"name\":\"Zo\xC3\xAB\"}",
        "\t{\"stop\":[],\"person\":1,\"observation\":{},\"seen\":true,\"time\":1}"})
  {
    EXPECT_TRUE(isPlainStep(line)) << line;
    expectBothWaysToAgree(line);
  }
}

TEST(FlatJson, TakesAsManyPartsAsALineMayHave)
{
  const auto arrayOf = [](std::size_t count) {
    std::string text = "[1";
    for (std::size_t i = 1; i < count; ++i)
      text += ",1";
    return text + "]";
  };
  EXPECT_EQ(665U, FlatJson(arrayOf(665)).document().size());
  EXPECT_THROW(FlatJson(arrayOf(666)), NotPlain);
  EXPECT_NO_THROW(FlatJson(std::string(8, '[') + std::string(8, ']')));
  EXPECT_THROW(FlatJson(std::string(9, '[') + std::string(9, ']')), NotPlain);
}

TEST(FlatJson, KnowsItsMembersAndElements)
{
  const FlatJson json(R"({"a":[1,-2,3.5],"b":{"c":true,"d":"text"},"e":false})");
  const FlatJson::Value document = json.document();
  ASSERT_TRUE(document.isObject());
  ASSERT_EQ(3U, document.size());

  const FlatJson::Value a = document.first();
  EXPECT_EQ("a", a.name());
  ASSERT_TRUE(a.isArray());
  ASSERT_EQ(3U, a.size());
  EXPECT_EQ(1U, a.first().asWhole<std::uint32_t>());
  EXPECT_EQ(-2, a.first().next().asWhole<std::int32_t>());
  EXPECT_FALSE(a.first().next().asWhole<std::uint32_t>());
  EXPECT_EQ(3.5f, a.first().next().next().asFloat());
  EXPECT_FALSE(a.first().next().next().asWhole<std::int64_t>());

  const FlatJson::Value b = a.next();
  EXPECT_EQ("b", b.name());
  EXPECT_EQ(true, b.first().asBool());
  EXPECT_EQ("text", b.first().next().asText());
  EXPECT_FALSE(b.first().asText());
  EXPECT_FALSE(b.asFloat());

  EXPECT_EQ("e", b.next().name());
  EXPECT_EQ(false, b.next().asBool());
}

}  // namespace
