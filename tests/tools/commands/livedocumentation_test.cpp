#include "libsession/entries.hpp"

#include <skeigiot/session/stream.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

namespace
{

/// The lines of the page between the fence and "```".
std::vector<std::string> linesAfter(const std::string& fence)
{
  std::ifstream page(SKEIGIOT_LIVE_PAGE);
  std::vector<std::string> lines;
  bool isInside = false;
  for (std::string line; std::getline(page, line);)
  {
    if (line.rfind("```", 0) == 0)
      isInside = line == fence;
    else if (isInside)
      lines.push_back(line);
  }
  return lines;
}

TEST(LivePage, ShowsTheAnswersThatItsLinesGet)
{
  const float before = KV::PersonState::getBinaryBoundaryPositive();
  const auto input = linesAfter("```json input");
  const auto answers = linesAfter("```json answers");
  ASSERT_EQ(6u, input.size());
  ASSERT_EQ(input.size(), answers.size());
  KV::session::Stream stream(KV::session::StreamTimes::Lines, [] { return support::start; });
  for (std::size_t i = 0; i < input.size(); ++i)
    EXPECT_EQ(answers[i] + "\n", stream.answer(input[i]));
  KV::PersonState::setBinaryBoundaryPositive(before);
}

}  // namespace
