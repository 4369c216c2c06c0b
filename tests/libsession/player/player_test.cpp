#include <skeigiot/session/player.hpp>
#include "libsession/entries.hpp"
#include "libsession/scriptedreader.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <memory>
#include <string>

namespace
{

using namespace replaytests;
using KV::session::Outcome;
using KV::session::Player;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

Outcome played(const std::vector<ScriptedReader::Step>& steps)
{
  return Player({}).play([&] { return std::make_unique<ScriptedReader>(steps); }, {});
}

/// Starts a scope each 100 ms, and stops none.
std::vector<ScriptedReader::Step> startsOf(std::size_t count)
{
  std::vector<ScriptedReader::Step> steps;
  for (std::size_t i = 0; i < count; ++i)
  {
    KV::recordings::Step step = entryAt(0.1 * static_cast<double>(i));
    step.scopeStarts.push_back({"scope " + std::to_string(i), -1});
    steps.push_back(ScriptedReader::entry(step));
  }
  return steps;
}

TEST(Player, WarnsOfScopesThatWereTooManyToBeOpen)
{
  EXPECT_THAT(played(startsOf(100)).warnings, IsEmpty());
  const Outcome outcome = played(startsOf(103));
  EXPECT_FALSE(outcome.error);
  EXPECT_THAT(outcome.warnings,
              ElementsAre("3 scopes were not started, since 100 were open already; the first was 'scope 100'"));
}

}  // namespace
