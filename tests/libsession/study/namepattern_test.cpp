#include "study/namepattern.hpp"

#include <gmock/gmock.h>

#include <ctime>
#include <map>
#include <string>

namespace
{

using ::testing::ElementsAre;
namespace session = KV::session;
using Values = std::map<std::string, std::string>;

TEST(NamePattern, GivesTheValuesOfItsPlaceholders)
{
  const session::NamePattern pattern("{participant}/{condition}_face.csv");
  EXPECT_EQ((Values{{"participant", "p01"}, {"condition", "hello"}}),
            pattern.match("p01/hello_face.csv").value_or(Values()));
  EXPECT_FALSE(pattern.match("p01/hello_faceXcsv")) << "a dot is a dot";
  EXPECT_FALSE(pattern.match("a/p01/hello_face.csv")) << "a placeholder has no slash";
  EXPECT_FALSE(pattern.match("/hello_face.csv")) << "a placeholder is not empty";
}

TEST(NamePattern, ExpectsTheSameValueForThePlaceholderUsedTwice)
{
  const session::NamePattern pattern("{p}/{p}_1(a)+.csv");
  EXPECT_EQ((Values{{"p", "p01"}}), pattern.match("p01/p01_1(a)+.csv").value_or(Values()));
  EXPECT_FALSE(pattern.match("p01/p02_1(a)+.csv"));
  EXPECT_THAT(pattern.placeholders(), ElementsAre("p"));
}

TEST(NamePattern, MatchesAnythingButASlashByAStar)
{
  const session::NamePattern pattern("{p}/*.csv");
  EXPECT_TRUE(pattern.match("p01/.csv"));
  EXPECT_TRUE(pattern.match("p01/face.csv"));
  EXPECT_FALSE(pattern.match("p01/a/face.csv"));
  EXPECT_FALSE(pattern.match(std::string(5000, 'a') + "/face.csv")) << "longer than any path";
}

TEST(NamePattern, GivesAPlaceholderAsMuchAsItCanTake)
{
  const session::NamePattern pattern("{p}_{c}*.csv");
  EXPECT_EQ((Values{{"p", "a_b"}, {"c", "cd"}}), pattern.match("a_b_cd.csv").value_or(Values()));
  const session::NamePattern stars("**{p}*.csv");
  EXPECT_EQ((Values{{"p", "c"}}), stars.match("abc.csv").value_or(Values())) << "the stars come first";
}

TEST(NamePattern, FindsTheValueThatFitsWhereverItIsUsed)
{
  const session::NamePattern pattern("{p}_*/{p}_{q}/{q}.csv");
  EXPECT_EQ((Values{{"p", "a"}, {"q", "d"}}), pattern.match("a_b_c/a_d/d.csv").value_or(Values()));
  EXPECT_FALSE(pattern.match("a_b_c/x_d/d.csv"));
}

TEST(NamePattern, TakesLittleTimeForAnyNumberOfStarsAndPlaceholders)
{
  std::string stars = "{p}/";
  std::string placeholders;
  for (int i = 0; i < 50; ++i)
  {
    stars += "*a";
    placeholders += "{p" + std::to_string(i) + "}a";
  }
  const std::string name(255, 'a');
  const std::clock_t begin = std::clock();
  EXPECT_FALSE(session::NamePattern(stars + "b").match("p/" + name));
  EXPECT_TRUE(session::NamePattern(stars).match("p/" + name));
  EXPECT_FALSE(session::NamePattern(placeholders + "b").match(name));
  EXPECT_TRUE(session::NamePattern(placeholders).match(name));
  EXPECT_FALSE(session::NamePattern("*{p}*-{p}").match(std::string(127, 'a') + "-" + std::string(127, 'b')));
  EXPECT_LT(std::clock() - begin, 20 * CLOCKS_PER_SEC) << "less than a second on an idle machine";
}

}  // namespace
