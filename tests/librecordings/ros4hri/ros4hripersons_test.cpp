#include "ros4hri/ros4hripersons.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace
{

using KV::recordings::RosbagPersons;

constexpr int most = static_cast<int>(RosbagPersons::mostFaces);

std::string idOf(const std::string& prefix, int number)
{
  return prefix + std::to_string(number);
}

/// Gives so many faces to a person each.
void addFaces(RosbagPersons& persons, int count)
{
  for (int i = 0; i < count; ++i)
    persons.addFace(idOf("p", i), idOf("f", i));
}

TEST(RosbagPersons, LeaveOutNewFacesAndVoicesOfABagWithTooMany)
{
  RosbagPersons persons;
  for (int i = 0; i < most; ++i)
  {
    persons.addFace("ada", idOf("f", i));
    persons.addVoice("ada", idOf("v", i));
  }
  persons.addFace("ada", "new");
  persons.addVoice("ada", "new");

  EXPECT_FALSE(persons.ofFace("new"));
  EXPECT_FALSE(persons.ofVoice("new"));
  EXPECT_EQ(0, persons.ofFace("f0"));
  EXPECT_EQ(0, persons.ofVoice("v0"));
}

TEST(RosbagPersons, ForgetTheFaceThatWasUsedLongestAgoInALiveSession)
{
  RosbagPersons persons(true);
  for (int i = 0; i < most; ++i)
    persons.addFace("ada", idOf("f", i));
  EXPECT_EQ(0, persons.ofFace("f0"));  // so that f1 was used longest ago

  persons.addFace("ada", "added");
  EXPECT_EQ(1, persons.ofFace("alone"));

  EXPECT_EQ(0, persons.ofFace("added"));
  EXPECT_EQ(0, persons.ofFace("f0"));
  EXPECT_EQ(0, persons.ofFace("f3"));
  EXPECT_EQ(2, persons.ofFace("f1"));
}

TEST(RosbagPersons, ForgetTheVoiceThatWasUsedLongestAgoInALiveSession)
{
  RosbagPersons persons(true);
  for (int i = 0; i < most; ++i)
    persons.addVoice("ada", idOf("v", i));
  EXPECT_EQ(0, persons.ofVoice("v0"));

  persons.addVoice("ben", "added");

  EXPECT_EQ(1, persons.ofVoice("added"));
  EXPECT_EQ(0, persons.ofVoice("v0"));
  EXPECT_FALSE(persons.ofVoice("v1"));
}

TEST(RosbagPersons, ForgetThePersonWhoWasUsedLongestAgoInALiveSession)
{
  RosbagPersons persons(true);
  persons.addVoice("p1", "v1");
  addFaces(persons, most);
  EXPECT_EQ(1, persons.ofFace("f0"));
  EXPECT_EQ("p1", persons.nameOf(0));

  persons.addFace("ada", "f2");  // a face that is known: room is missing for the person only

  EXPECT_EQ(most, persons.ofFace("f2"));
  EXPECT_EQ(1, persons.ofFace("f0"));
  EXPECT_FALSE(persons.ofVoice("v1"));
  EXPECT_EQ(most + 1, persons.ofFace("f1"));
  EXPECT_EQ("f1", persons.nameOf(most + 1));
}

TEST(RosbagPersons, KeepFacesOfPersonsWhileThereIsRoom)
{
  RosbagPersons persons(true);
  addFaces(persons, most / 2 + 1);

  persons.forgetFace("f0");
  persons.forgetFace("f1");
  persons.forgetFace("none");

  EXPECT_EQ(1, persons.ofFace("f1"));
  EXPECT_EQ(most / 2 + 1, persons.ofFace("f0"));
}

TEST(RosbagPersons, KeepTheNameOfAFormerNumberAsLongAsItIsNeeded)
{
  RosbagPersons persons(true);
  EXPECT_EQ(0, persons.ofFace("f"));
  EXPECT_EQ(1, persons.ofFace("g"));
  persons.addFace("ada", "f");
  persons.forgetFace("g");

  persons.forgetFormer({0, 1});
  EXPECT_EQ("f", persons.nameOf(0));
  EXPECT_EQ("g", persons.nameOf(1));

  persons.forgetFormer({1});
  EXPECT_FALSE(persons.isKnown(0));
  EXPECT_EQ("", persons.nameOf(0));
  EXPECT_TRUE(persons.isKnown(1));
  EXPECT_TRUE(persons.isKnown(2));
}

TEST(RosbagPersons, DoNotGiveAFormerNumberAnother)
{
  RosbagPersons persons(true);
  EXPECT_EQ(0, persons.ofFace("f"));
  persons.addFace("ada", "f");

  persons.renumber(0);

  EXPECT_FALSE(persons.isKnown(0));
  EXPECT_EQ(1, persons.ofFace("f"));
  persons.addFace("ben", "g");
  EXPECT_EQ(2, persons.ofFace("g"));
}

TEST(RosbagPersons, GiveAPersonWithTwoFacesAndAVoiceOneNewNumber)
{
  RosbagPersons persons(true);
  persons.addFace("ada", "f");
  persons.addFace("ada", "g");
  persons.addVoice("ada", "v");

  persons.renumber(0);

  EXPECT_EQ(1, persons.ofFace("f"));
  EXPECT_EQ(1, persons.ofFace("g"));
  EXPECT_EQ(1, persons.ofVoice("v"));
  EXPECT_EQ("ada", persons.nameOf(1));
  EXPECT_FALSE(persons.isKnown(0));
}

TEST(RosbagPersons, AreOnePersonWithTheirAliases)
{
  RosbagPersons persons;
  persons.addFace("p1", "f");
  persons.setAlias("p1", "ada");
  persons.addVoice("ada", "v");
  persons.addFace("p2", "g");
  persons.setAlias("p2", "p1");

  EXPECT_EQ(0, persons.ofFace("f"));
  EXPECT_EQ(0, persons.ofFace("g"));
  EXPECT_EQ(0, persons.ofVoice("v"));
  EXPECT_EQ("ada", persons.nameOf(0));
  EXPECT_EQ("person 0 is 'ada'", persons.describe());
}

TEST(RosbagPersons, KeepTheNumberUnderWhichTheyAreKnown)
{
  RosbagPersons persons(true);
  persons.addFace("ada", "f");
  persons.addFace("p1", "g");
  EXPECT_EQ(1, persons.ofFace("g"));

  persons.setAlias("p1", "ada");

  EXPECT_EQ(1, persons.ofFace("g"));
  EXPECT_EQ(1, persons.ofFace("f"));
  EXPECT_EQ("ada", persons.nameOf(1));
}

/// Lets p1 be seen with the face g as number 0, and ada with f as number 1.
void seeTwo(RosbagPersons& persons)
{
  persons.addFace("p1", "g");
  persons.addFace("ada", "f");
  EXPECT_EQ(0, persons.ofFace("g"));
  EXPECT_EQ(1, persons.ofFace("f"));
}

TEST(RosbagPersons, HaveTheNumberOfTheOtherIfBothWereThere)
{
  RosbagPersons persons(true);
  seeTwo(persons);

  persons.setAlias("p1", "ada");
  persons.setAlias("p1", "ada");

  EXPECT_EQ(1, persons.ofFace("g"));
  EXPECT_EQ(1, persons.ofFace("f"));
  EXPECT_EQ("p1", persons.nameOf(0));
  persons.forgetFormer({});
  EXPECT_FALSE(persons.isKnown(0));
  EXPECT_TRUE(persons.isKnown(1));
}

TEST(RosbagPersons, AreTwoAgainWithoutTheAlias)
{
  for (const bool isForgotten : {false, true})
  {
    RosbagPersons persons(true);
    seeTwo(persons);
    persons.setAlias("p1", "ada");
    if (isForgotten)
      persons.forgetFormer({});

    persons.setAlias("p1", "");
    persons.setAlias("p1", "");

    const int number = isForgotten ? 2 : 0;
    EXPECT_EQ(number, persons.ofFace("g"));
    EXPECT_EQ(1, persons.ofFace("f"));
    EXPECT_EQ("p1", persons.nameOf(number));
    persons.forgetFormer({});
    EXPECT_TRUE(persons.isKnown(number));
  }
}

TEST(RosbagPersons, FollowAnAliasThatChanges)
{
  RosbagPersons persons(true);
  persons.addFace("p1", "g");
  persons.addFace("ada", "f");
  persons.addFace("ben", "h");
  persons.setAlias("p1", "ada");
  EXPECT_EQ(persons.ofFace("f"), persons.ofFace("g"));

  persons.setAlias("p1", "ben");

  EXPECT_EQ(persons.ofFace("h"), persons.ofFace("g"));
  EXPECT_NE(persons.ofFace("f"), persons.ofFace("g"));
}

TEST(RosbagPersons, BelieveTheLastOfTwoAliasesThatContradictEachOther)
{
  RosbagPersons persons(true);
  persons.addFace("ada", "f");
  persons.addFace("ben", "g");
  persons.addFace("eva", "h");
  persons.setAlias("ada", "ben");
  persons.setAlias("ben", "eva");

  persons.setAlias("eva", "ada");

  EXPECT_EQ(persons.ofFace("f"), persons.ofFace("h"));
  EXPECT_EQ(persons.ofFace("f"), persons.ofFace("g"));
  EXPECT_EQ("ben", persons.nameOf(*persons.ofFace("f")));
  persons.setAlias("ada", "ada");
  EXPECT_NE(persons.ofFace("f"), persons.ofFace("g"));
  EXPECT_EQ("ada", persons.nameOf(*persons.ofFace("h")));
}

TEST(RosbagPersons, HaveAtMostThirtyAliasesInARow)
{
  for (const bool isFromTheEnd : {false, true})
  {
    RosbagPersons persons(true);
    constexpr int row = 31;
    addFaces(persons, row + 1);
    for (int i = 0; i < row; ++i)
    {
      const int alias = isFromTheEnd ? row - 1 - i : i;
      persons.setAlias(idOf("p", alias), idOf("p", alias + 1));
    }
    const int last = isFromTheEnd ? row : row - 1;
    EXPECT_EQ(persons.ofFace(idOf("f", last)), persons.ofFace(idOf("f", last - 30)));
    EXPECT_NE(persons.ofFace("f0"), persons.ofFace(idOf("f", row)));
  }
}

TEST(RosbagPersons, AreNoAliasesOfIdsThatNoTopicCanHave)
{
  RosbagPersons persons;
  persons.addFace("p1", "f");
  persons.setAlias("p1", std::string(248, 'a'));
  EXPECT_EQ("p1", persons.nameOf(*persons.ofFace("f")));
  persons.setAlias("p1", std::string(247, 'a'));
  EXPECT_EQ(std::string(247, 'a'), persons.nameOf(*persons.ofFace("f")));
}

TEST(RosbagPersons, AreSeparateWhenTheOneWhoseAliasTheyAreIsForgotten)
{
  RosbagPersons persons(true);
  persons.addFace("ada", "f");
  persons.addFace("p", "g");
  persons.setAlias("p", "ada");
  EXPECT_EQ(persons.ofFace("f"), persons.ofFace("g"));
  for (int i = 0; i < most - 2; ++i)
    persons.addVoice(idOf("p", i), idOf("v", i));
  persons.setAnonymous("p", false);
  persons.addVoice("p", "v");  // so that Ada was used longest ago

  persons.addVoice("new", "w");

  EXPECT_EQ("p", persons.nameOf(*persons.ofFace("g")));
  EXPECT_EQ("f", persons.nameOf(*persons.ofFace("f")));
}

TEST(RosbagPersons, LeaveOutAliasesOfABagWithTooManyPersons)
{
  RosbagPersons persons;
  addFaces(persons, most);
  persons.setAlias("p0", "other");
  persons.setAlias("other", "p0");
  persons.setAnonymous("other", true);
  persons.setAlias("p0", "p1");

  EXPECT_EQ(persons.ofFace("f1"), persons.ofFace("f0"));
  EXPECT_EQ("p1", persons.nameOf(*persons.ofFace("f0")));
}

TEST(RosbagPersons, KeepTheNumberOfAnAnonymousPersonWhoGetsAName)
{
  RosbagPersons persons(true);
  persons.setAnonymous("p1", true);
  persons.addFace("p1", "f");
  persons.addVoice("p1", "v");
  const auto number = persons.ofFace("f");

  persons.addFace("ada", "f");
  persons.addVoice("ada", "v");

  EXPECT_EQ(number, persons.ofFace("f"));
  EXPECT_EQ(number, persons.ofVoice("v"));
  EXPECT_EQ("ada", persons.nameOf(*number));
}

TEST(RosbagPersons, DoNotTakeTheNumberOfAnAnonymousPersonIfTheyWereThereBefore)
{
  RosbagPersons persons(true);
  persons.addFace("ada", "f");
  const auto ada = persons.ofFace("f");
  persons.setAnonymous("p1", true);
  persons.addFace("p1", "g");
  EXPECT_NE(ada, persons.ofFace("g"));

  persons.addFace("ada", "g");

  EXPECT_EQ(ada, persons.ofFace("g"));
}

TEST(RosbagPersons, DoNotTakeTheNumberOfAPersonWithAName)
{
  for (const bool wasAnonymous : {false, true})
  {
    RosbagPersons persons(true);
    persons.setAnonymous("p1", wasAnonymous);
    persons.setAnonymous("p1", false);
    persons.addFace("p1", "f");
    const auto number = persons.ofFace("f");

    persons.addFace("ada", "f");

    EXPECT_NE(number, persons.ofFace("f"));
  }
}

TEST(RosbagPersons, DescribeThoseWithANameOnly)
{
  RosbagPersons persons;
  EXPECT_EQ("each face is a person, in the order of appearance", persons.describe());
  EXPECT_EQ(0, persons.ofFace("alone"));
  EXPECT_EQ("each face is a person, in the order of appearance", persons.describe());
  addFaces(persons, 5);
  const std::string five = "person 1 is 'p0', 2 is 'p1', 3 is 'p2', 4 is 'p3'";
  EXPECT_EQ(five + ", 5 is 'p4'", persons.describe());
  addFaces(persons, 6);
  EXPECT_EQ(five + ", 5 is 'p4', and so on", persons.describe());
}

TEST(RosbagPersons, AreNotMadeByAnAliasOfABagThatHasTooMany)
{
  RosbagPersons persons;
  addFaces(persons, most - 1);
  persons.addVoice("last", "v");
  EXPECT_EQ(most - 1, persons.ofVoice("v"));

  for (const auto& [person, other] : {std::pair("p1", "unknown"), std::pair("unknown", "p1")})
  {
    persons.setAlias(person, other);
    EXPECT_EQ(1, persons.ofFace("f1")) << other;
    EXPECT_EQ("p1", persons.nameOf(1)) << other;
  }

  persons.setAlias("p1", "p0");
  EXPECT_EQ(persons.ofFace("f0"), persons.ofFace("f1")) << "both were known before";
}

TEST(RosbagPersons, AreUsedByNamingAnAlias)
{
  RosbagPersons persons(true);
  addFaces(persons, most);
  for (int i = most - 1; i >= 0; --i)
    persons.setAlias(idOf("p", i), "");

  persons.addFace("added", "f2");  // a face that is known: room is missing for the person only

  EXPECT_EQ("p0", persons.nameOf(persons.ofFace("f0").value()));
  const std::string last = idOf("f", most - 1);
  EXPECT_EQ(last, persons.nameOf(persons.ofFace(last).value())) << "its person was used longest ago, and is forgotten";
}

}  // namespace
