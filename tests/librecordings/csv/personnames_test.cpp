#include "csv/personnames.hpp"

#include <gtest/gtest.h>

namespace
{
const KV::recordings::Error::Place place{"file", 3, "who"};

TEST(PersonNames, KeepWholeNumbers)
{
  KV::recordings::PersonNames names;
  EXPECT_EQ(7, names.numberOf("7", place));
  EXPECT_EQ(-2, names.numberOf("-2", place));
  EXPECT_EQ(3, names.numberOf("3.0", place));
  EXPECT_EQ(2147483647, names.numberOf("2147483647", place));
  EXPECT_EQ("", names.nameOf(7));
  EXPECT_EQ("", names.nameOf(-2));
}

TEST(PersonNames, CountOtherNamesAsTheyAppear)
{
  KV::recordings::PersonNames names;
  EXPECT_EQ(0, names.numberOf("ben", place));
  EXPECT_EQ(1, names.numberOf("anna", place));
  EXPECT_EQ(0, names.numberOf("ben", place));
  EXPECT_EQ("ben", names.nameOf(0));
  EXPECT_EQ("anna", names.nameOf(1));
  EXPECT_EQ("", names.nameOf(2)) << "there is no such person";
}

TEST(PersonNames, AreInUtf8)
{
  KV::recordings::PersonNames names;
  EXPECT_EQ(0, names.numberOf("Zo\xc3\xab", place));
  EXPECT_EQ(1, names.numberOf("Zo\xeb", place));
  EXPECT_EQ("Zo\xc3\xab", names.nameOf(0));
  EXPECT_EQ("Zo?", names.nameOf(1));
}

TEST(PersonNames, TakeForANameWhatIsNoNumberOfAPerson)
{
  for (const char* const name : {"2147483648", "1.5", "nan", "1e99", "0x1", "1 2"})
  {
    KV::recordings::PersonNames names;
    EXPECT_EQ(0, names.numberOf(name, place)) << name;
    EXPECT_EQ(name, names.nameOf(0));
  }
}

TEST(PersonNames, MayNotBeMixedWithNumbers)
{
  KV::recordings::PersonNames names;
  names.numberOf("4", place);
  EXPECT_THROW(names.numberOf("anna", place), KV::recordings::BadLine);
  EXPECT_EQ(5, names.numberOf("5", place));
}

TEST(PersonNames, AreLimited)
{
  KV::recordings::PersonNames names;
  for (std::size_t i = 0; i < KV::recordings::PersonNames::mostNames; ++i)
    names.numberOf("p" + std::to_string(i), place);
  try
  {
    names.numberOf("one more", place);
    ADD_FAILURE() << "there was no limit";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_STREQ("file:3: who: there are more than 10000 names of persons: this column does not name persons",
                 error.what());
  }
}

}  // namespace
