// The boundaries, which belong to the whole process.

#include "threads/together.hpp"

#include "support/capturedlog.hpp"
#include "support/restoredboundaries.hpp"

#include <skeigiot/personstate.hpp>
#include <skeigiot/verdict.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace
{

constexpr int count = 4;
constexpr int rounds = 100;

TEST(TunablesOfThreads, AreReadWholeWhileTheyAreSet)
{
  const support::RestoredBoundaries restored;
  KV::PersonState::setBinaryBoundaryPositive(0.125f);
  std::atomic<int> wrong{0};
  threads::runOnThreads(count, rounds, [&](int thread, int) {
    KV::PersonState::setBinaryBoundaryPositive(thread % 2 == 0 ? 0.125f : 0.375f);
    const float read = KV::PersonState::getBinaryBoundaryPositive();
    wrong += static_cast<int>(read != 0.125f && read != 0.375f);
  });
  EXPECT_EQ(0, wrong);
}

TEST(TunablesOfThreads, MayBeSetWhileStatesAreJudged)
{
  const support::RestoredBoundaries restored;
  const KV::PersonState happy(0.9f, 1.f, 0.f, 0.f);
  std::atomic<int> wrong{0};
  const auto set = [](int round) {
    const float fraction = static_cast<float>(round % 10) / 100.f;
    KV::PersonState::setBinaryBoundaryPositive(0.1f + fraction);
    KV::PersonState::setBinaryBoundaryNegative(-0.1f - fraction);
    KV::PersonState::setBinaryBoundaryConfidence(0.3f + fraction);
    KV::PersonState::setBinaryBoundaryLookingAtRobot(0.5f + fraction);
    KV::PersonState::setBinaryBoundaryStrictlyLookingAtRobot(0.8f + fraction);
  };
  const auto judge = [&](int) {
    wrong += static_cast<int>(happy.personPleasureState() != KV::PleasurePositive);
    KV::Verdict verdict;
    verdict.add(happy);
    wrong += static_cast<int>(verdict.word() != "positive");
  };
  threads::runTogether(rounds, set, set, judge, judge);
  EXPECT_EQ(0, wrong);
}

TEST(TunablesOfThreads, RefuseEachWrongValueWithAWarning)
{
  const support::CapturedLog log;
  const float before = KV::PersonState::getBinaryBoundaryConfidence();
  threads::runOnThreads(count, rounds, [](int, int) { KV::PersonState::setBinaryBoundaryConfidence(1.5f); });

  EXPECT_EQ(static_cast<std::size_t>(count * rounds), log.size());
  EXPECT_EQ(before, KV::PersonState::getBinaryBoundaryConfidence());
  for (const std::string& message : log.messages())
    ASSERT_EQ("setBinaryBoundaryConfidence failed: 1.500000 is not between 0.0 and 1.0.", message);
}

}  // namespace
