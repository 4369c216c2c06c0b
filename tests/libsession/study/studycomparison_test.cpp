#include <skeigiot/session/studycomparison.hpp>

#include "libsession/study/writtenresults.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
namespace session = KV::session;

class StudyComparison : public ::testing::Test
{
protected:
  session::StudyComparison compare(const session::StudyQuestion& question = {}) const
  {
    return session::compareGroups(session::StudyResults({results.path()}), question);
  }

  std::string errorOf(const session::StudyQuestion& question) const
  {
    try
    {
      compare(question);
    }
    catch (const std::invalid_argument& error)
    {
      return error.what();
    }
    return "no error";
  }

  WrittenResults results;
};

/// "condition/role: participant=value*rows ..., mean"
std::vector<std::string> textsOf(const session::StudyComparison& comparison)
{
  std::vector<std::string> texts;
  for (const session::StudyGroup& group : comparison.groups)
  {
    std::string text = group.value + "/" + group.role + ":";
    for (const session::StudyGroup::Person& person : group.persons)
      text += " " + person.participant + "=" + std::to_string(person.value).substr(0, 5) + "*" +
              std::to_string(person.rows);
    texts.push_back(text + ", " + std::to_string(group.mean).substr(0, 5));
  }
  return texts;
}

TEST_F(StudyComparison, TakesTheMeanOfAPersonsSessionsAndThenThatOfThePersons)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.1");
  results.addSession("p02/hello/2", "p02", "hello");
  results.addPerson("p02/hello/2", 1, "p02");
  results.addSummary("p02/hello/2", 1, 1, "whole recording", "0.2");
  results.add("p01", "bye", "-0.5");

  EXPECT_THAT(textsOf(compare()), ElementsAre("bye/: p01=-0.50*1, -0.50", "hello/: p01=0.500*1 p02=0.150*2, 0.325"));
}

TEST_F(StudyComparison, LeavesOutUnknownValuesAndSessionsThatAreNotComplete)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "NULL");
  results.add("p03", "hello", "0.9", "cut short");
  results.add("p04", "hello", "0.9", "failed");

  EXPECT_THAT(textsOf(compare()), ElementsAre("hello/: p01=0.500*1, 0.500"));
}

TEST_F(StudyComparison, MakesAGroupOfEachRole)
{
  results.addSession("s", "p01", "hello");
  results.addPerson("s", 1, "p01", "child");
  results.addPerson("s", 2, "p99", "parent");
  results.addSummary("s", 1, 1, "whole recording", "0.5");
  results.addSummary("s", 2, 1, "whole recording", "0.25");

  EXPECT_THAT(textsOf(compare()), ElementsAre("hello/child: p01=0.500*1, 0.500", "hello/parent: p99=0.250*1, 0.250"));
}

TEST_F(StudyComparison, CountsAPersonWithoutAParticipantOnceInEachSession)
{
  for (const char* const name : {"a", "b"})
  {
    results.addSession(name, "", "");
    results.addPerson(name, 7, "");
    results.addSummary(name, 7, 1, "whole recording", "0.5");
  }
  EXPECT_THAT(textsOf(compare()), ElementsAre("/: a, person 7=0.500*1 b, person 7=0.500*1, 0.500"));
}

TEST_F(StudyComparison, ComparesScopesExceptTheWholeRecording)
{
  results.add("p01", "hello", "0.5");
  results.addSummary("p01/hello", 1, 2, "task", "0.2");
  results.addSummary("p01/hello", 1, 3, "greeting", "0.1");
  results.addSummary("p01/hello", 1, 4, "task", "0.3");

  EXPECT_THAT(textsOf(compare({"valence", "not used", "scope"})),
              ElementsAre("greeting/: p01=0.100*1, 0.100", "task/: p01=0.250*2, 0.250"));
}

TEST_F(StudyComparison, ComparesByAnotherPlaceholder)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.25");
  results.add("p03", "hello", "0.125");
  results.run(
      "INSERT INTO factors VALUES ('p01/hello', 'day', 'monday'), ('p02/hello', 'day', 'friday'),"
      " ('p03/hello', 'place', 'lab')");

  EXPECT_THAT(textsOf(compare({"valence", "whole recording", "day"})),
              ElementsAre("/: p03=0.125*1, 0.125", "friday/: p02=0.250*1, 0.250", "monday/: p01=0.500*1, 0.500"));
}

TEST_F(StudyComparison, GivesASinglePersonNoInterval)
{
  results.add("p01", "hello", "0.5");
  EXPECT_FALSE(compare().groups.at(0).interval);
}

TEST_F(StudyComparison, GivesEqualPersonsAnIntervalWithoutWidth)
{
  results.add("p01", "hello", "0.5");
  results.add("p02", "hello", "0.5");
  const auto interval = compare().groups.at(0).interval;
  ASSERT_TRUE(interval);
  EXPECT_DOUBLE_EQ(0.5, interval->first);
  EXPECT_DOUBLE_EQ(0.5, interval->second);
}

/// Returns what the interpolated percentiles of 1000 means of resamples are, by the book.
std::pair<double, double> intervalByTheBook(const std::vector<double>& values)
{
  std::mt19937_64 generator(1);
  const std::uint64_t excess = (std::numeric_limits<std::uint64_t>::max() % values.size() + 1) % values.size();
  std::vector<double> means;
  for (int i = 0; i < 1000; ++i)
  {
    double sum = 0.;
    for (std::size_t drawn = 0; drawn < values.size(); ++drawn)
    {
      std::uint64_t number = generator();
      while (number > std::numeric_limits<std::uint64_t>::max() - excess)
        number = generator();
      sum += values[number % values.size()];
    }
    means.push_back(sum / static_cast<double>(values.size()));
  }
  std::sort(means.begin(), means.end());
  const auto at = [&means](double place) {
    const auto below = static_cast<std::size_t>(place);
    return means[below] + (place - static_cast<double>(below)) * (means[below + 1] - means[below]);
  };
  return {at(0.025 * 999), at(0.975 * 999)};
}

TEST_F(StudyComparison, TakesPercentilesOfResampledPersons)
{
  const std::vector<double> values = {0.5, -0.25, 0.125, 0.75, 0.0625, -0.5, 0.375};
  for (std::size_t i = 0; i < values.size(); ++i)
    results.add("p" + std::to_string(i), "hello", std::to_string(values[i]));
  const auto [low, high] = intervalByTheBook(values);
  const auto interval = compare().groups.at(0).interval;
  ASSERT_TRUE(interval);
  EXPECT_DOUBLE_EQ(low, interval->first);
  EXPECT_DOUBLE_EQ(high, interval->second);
  EXPECT_LT(low, high);
}

TEST_F(StudyComparison, RefusesAQuantityThatDoesNotExistOrIsNoNumber)
{
  EXPECT_THAT(errorOf({"joy", "whole recording", "condition"}),
              StartsWith("there is no quantity 'joy' in the summaries; expected one of start, stop, "));
  EXPECT_THAT(errorOf({"verdict", "whole recording", "condition"}), HasSubstr("no quantity 'verdict'"));
  EXPECT_THAT(errorOf({"session", "whole recording", "condition"}), HasSubstr("no quantity 'session'"));
}

TEST_F(StudyComparison, RefusesAPlaceholderThatDoesNotExist)
{
  EXPECT_EQ(
      "there is no placeholder 'day' in the names of the sessions; expected condition, scope or another placeholder",
      errorOf({"valence", "whole recording", "day"}));
}

TEST_F(StudyComparison, RefusesAScopeWithoutNumbers)
{
  results.add("p01", "hello", "0.5");
  EXPECT_EQ("no complete session has 'valence' in the scope 'task'", errorOf({"valence", "task", "condition"}));
  EXPECT_EQ("no complete session has 'valence' in a scope besides the whole recording",
            errorOf({"valence", "", "scope"}));
}

}  // namespace
