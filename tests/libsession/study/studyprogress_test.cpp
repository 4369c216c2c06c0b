#include "study/studyprogress.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using KV::session::StudyProgress;
using KV::session::StudyWork;
using ::testing::ElementsAre;

TEST(StudyProgress, CountsSessionsByTheirBytes)
{
  StudyProgress progress({300, 100});
  EXPECT_EQ(0., progress.share());
  {
    StudyProgress::OfSession session(progress, 0);
    session.reach(0.5);
    EXPECT_EQ(150. / 400., progress.share());
    session.reach(0.25);
    EXPECT_EQ(150. / 400., progress.share()) << "it never goes back";
    session.reach(7.);
    EXPECT_EQ(300. / 400., progress.share()) << "a session has no more than its bytes";
  }
  EXPECT_EQ(300. / 400., progress.share());
  {
    const StudyProgress::OfSession session(progress, 1);
  }
  EXPECT_EQ(1., progress.share()) << "a session that ends is done, however far it came";
}

TEST(StudyProgress, CountsAnEmptySessionAsOneByte)
{
  StudyProgress progress({0, 0});
  {
    const StudyProgress::OfSession session(progress, 0);
  }
  EXPECT_EQ(0.5, progress.share());
  EXPECT_EQ(0., StudyProgress({}).share()) << "a study without sessions";
}

TEST(WorkOnSessions, TakesTheResultsInTheOrderOfTheSessions)
{
  StudyProgress progress({1, 1, 1, 1});
  std::vector<std::string> taken;
  KV::session::workOnSessions<std::string>(
      4, StudyWork{2, {}, {}}, progress,
      [](std::size_t i, StudyProgress::OfSession&) { return std::string(i + 1, 'a'); },
      [&taken](std::size_t i, const std::string& result) { taken.push_back(std::to_string(i) + result); });
  EXPECT_THAT(taken, ElementsAre("0a", "1aa", "2aaa", "3aaaa"));
  EXPECT_EQ(1., progress.share());
}

TEST(WorkOnSessions, EndsWithTheFirstExceptionOfASession)
{
  StudyProgress progress({1, 1, 1});
  std::vector<std::size_t> taken;
  EXPECT_THROW(
      KV::session::workOnSessions<int>(
          3, StudyWork{1, {}, {}}, progress,
          [](std::size_t i, StudyProgress::OfSession&) { return i == 1 ? throw std::runtime_error("no memory") : 0; },
          [&taken](std::size_t i, int) { taken.push_back(i); }),
      std::runtime_error);
  EXPECT_THAT(taken, ElementsAre(0U));
}

}  // namespace
