#include "personsinview.hpp"

#include <gtest/gtest.h>

namespace
{
using Persons = std::vector<std::int32_t>;

TEST(PersonsInView, MissNobodyWhoWasNeverSeen)
{
  tools::PersonsInView persons;
  EXPECT_TRUE(persons.empty());
  EXPECT_EQ(Persons(), persons.endCycle());
}

TEST(PersonsInView, MissWhoeverWasSeenBeforeInAscendingOrder)
{
  tools::PersonsInView persons;
  for (const int person : {7, -2, 3})
    EXPECT_TRUE(persons.see(person));
  EXPECT_EQ(Persons(), persons.endCycle());
  EXPECT_TRUE(persons.see(3));
  EXPECT_EQ((Persons{-2, 7}), persons.endCycle());
}

TEST(PersonsInView, NoticeAPersonSeenTwiceInACycle)
{
  tools::PersonsInView persons;
  EXPECT_TRUE(persons.see(1));
  EXPECT_FALSE(persons.see(1));
  persons.endCycle();
  EXPECT_TRUE(persons.see(1));
}

TEST(PersonsInView, ForgetWhoIsMissedForLong)
{
  tools::PersonsInView persons;
  persons.see(1);
  persons.endCycle();
  for (int cycle = 1; cycle <= tools::PersonsInView::longestAbsence; ++cycle)
    EXPECT_EQ(Persons{1}, persons.endCycle()) << "in cycle " << cycle;
  EXPECT_EQ(Persons(), persons.endCycle());
  EXPECT_TRUE(persons.empty());
}

TEST(PersonsInView, CountAnewWhenAPersonIsBack)
{
  tools::PersonsInView persons;
  for (int time = 0; time < 3; ++time)
  {
    persons.see(1);
    persons.endCycle();
    for (int cycle = 1; cycle < tools::PersonsInView::longestAbsence; ++cycle)
      EXPECT_EQ(Persons{1}, persons.endCycle());
  }
}

}  // namespace
