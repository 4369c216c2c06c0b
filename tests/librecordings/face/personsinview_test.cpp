#include "face/personsinview.hpp"

#include <gtest/gtest.h>

namespace
{
using Persons = std::vector<std::int32_t>;

TEST(PersonsInView, MissNobodyWhoWasNeverSeen)
{
  KV::recordings::PersonsInView persons;
  EXPECT_TRUE(persons.empty());
  EXPECT_EQ(Persons(), persons.endCycle());
}

TEST(PersonsInView, MissThePersonsSeenBeforeInAscendingOrder)
{
  KV::recordings::PersonsInView persons;
  for (const int person : {7, -2, 3})
    EXPECT_TRUE(persons.see(person));
  EXPECT_EQ(Persons(), persons.endCycle());
  EXPECT_TRUE(persons.see(3));
  EXPECT_EQ((Persons{-2, 7}), persons.endCycle());
}

TEST(PersonsInView, NoticeAPersonSeenTwiceInACycle)
{
  KV::recordings::PersonsInView persons;
  EXPECT_TRUE(persons.see(1));
  EXPECT_FALSE(persons.see(1));
  persons.endCycle();
  EXPECT_TRUE(persons.see(1));
}

TEST(PersonsInView, ForgetWhoIsMissedForLong)
{
  KV::recordings::PersonsInView persons;
  persons.see(1);
  persons.endCycle();
  for (int cycle = 1; cycle <= KV::recordings::PersonsInView::longestAbsence; ++cycle)
    EXPECT_EQ(Persons{1}, persons.endCycle()) << "in cycle " << cycle;
  EXPECT_EQ(Persons(), persons.endCycle());
  EXPECT_TRUE(persons.empty());
}

TEST(PersonsInView, CountAnewWhenAPersonIsBack)
{
  KV::recordings::PersonsInView persons;
  for (int time = 0; time < 3; ++time)
  {
    persons.see(1);
    persons.endCycle();
    for (int cycle = 1; cycle < KV::recordings::PersonsInView::longestAbsence; ++cycle)
      EXPECT_EQ(Persons{1}, persons.endCycle());
  }
}

}  // namespace
