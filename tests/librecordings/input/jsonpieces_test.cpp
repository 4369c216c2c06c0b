#include "input/jsonpieces.hpp"

#include "librecordings/support.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <gmock/gmock.h>

namespace
{
using ::testing::ElementsAre;

class JsonPieces : public ::testing::Test
{
protected:
  /// Returns the objects of the text and the reasons why others cannot be read, each after its line.
  std::vector<std::string> piecesOf(const std::string& text) const
  {
    const std::string path = folder.write("f", text);
    KV::recordings::JsonPieces pieces{KV::recordings::InputFile(path)};
    std::vector<std::string> result;
    std::string piece;
    for (bool isAtEnd = false; !isAtEnd;)
      try
      {
        isAtEnd = !pieces.next(piece);
        if (!isAtEnd)
          result.push_back(std::to_string(pieces.lineNumber()) + ": " + piece);
      }
      catch (const KV::recordings::BadLine& error)
      {
        result.push_back(std::string(error.what()).substr(path.size() + 1));
      }
    return result;
  }

  support::TemporaryFolder folder;
};

TEST_F(JsonPieces, FollowEachOtherOrAreInOneArray)
{
  EXPECT_THAT(piecesOf("{}{\"a\":{}}\n{\"b\":[1]}"), ElementsAre("1: {}", "1: {\"a\":{}}", "2: {\"b\":[1]}"));
  EXPECT_THAT(piecesOf(" [{},\n{\"a\":1}\n]\n"), ElementsAre("1: {}", "2: {\"a\":1}"));
  EXPECT_THAT(piecesOf(""), ElementsAre());
  EXPECT_THAT(piecesOf("[]"), ElementsAre());
}

TEST_F(JsonPieces, AreInOneArrayAtMost)
{
  EXPECT_THAT(piecesOf("[[{}]]\n{}"), ElementsAre("1: expected a JSON object, found '[{}]]'", "2: {}"));
  EXPECT_THAT(piecesOf("[\n[{}]"), ElementsAre("2: expected a JSON object, found '[{}]'"));
  EXPECT_THAT(piecesOf("{}[{}]"), ElementsAre("1: {}", "1: expected a JSON object, found '[{}]'"));
}

TEST_F(JsonPieces, HaveNoCommasBetweenThemOutsideAnArray)
{
  EXPECT_THAT(piecesOf("{},{}"), ElementsAre("1: {}", "1: expected a JSON object, found ',{}'"));
  EXPECT_THAT(piecesOf("{}]"), ElementsAre("1: {}", "1: expected a JSON object, found ']'"));
}

TEST_F(JsonPieces, MayHaveBracesAndQuotesInTheirTexts)
{
  EXPECT_THAT(piecesOf(R"({"a":"}{"}{"b":"\"}"}{"c":"\\"}{})"),
              ElementsAre(R"(1: {"a":"}{"})", R"(1: {"b":"\"}"})", R"(1: {"c":"\\"})", "1: {}"));
}

}  // namespace
