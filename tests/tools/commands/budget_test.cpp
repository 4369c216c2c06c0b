#include "librecordings/limitedchild.hpp"
#include "support/command.hpp"
#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The budget of memory that SECURITY.md states, for the built command.

namespace
{

using namespace replaytests;

constexpr std::size_t kibibytesOfAny = std::size_t{256} << 10U;
constexpr std::int64_t begin = 1577836800000000000;  // [ns] since 1970

/// Returns lines that each name another person.
std::string linesOf(int persons, int first = 0)
{
  std::string lines;
  for (int person = first; person < first + persons; ++person)
    lines += "{\"time\":" + std::to_string(begin + person) + ",\"person\":" + std::to_string(person) + "}\n";
  return lines;
}

std::string lineOfOpenScopes(int count)
{
  std::string line;
  for (int scope = 0; scope < count; ++scope)
    line += std::string(scope == 0 ? "" : ",") + R"({"scope":"s)" + std::to_string(scope) + "\"}";
  return "{\"time\":" + std::to_string(begin) + ",\"start\":[" + line + "]}\n";
}

std::string labelsAtOnce(int count)
{
  std::string labels = "start,end,value\n";
  for (int label = 0; label < count; ++label)
    labels += "0," + std::to_string(1000 + label) + ",l" + std::to_string(label) + "\n";
  return labels;
}

struct Case
{
  const char* name;
  std::vector<std::string> inputs;  ///< written to files 1, 2, ...
  std::size_t bytesPerByte;
  const char* script;
};

class Budget : public ::testing::TestWithParam<Case>
{};

TEST_P(Budget, Holds)
{
  if (!support::memoryCanBeLimited)
    GTEST_SKIP() << "sanitizers take address space without a measure";
  const TemporaryFolder folder;
  std::size_t size = 0;
  int number = 0;
  for (const std::string& input : GetParam().inputs)
  {
    folder.write(std::to_string(++number), input);
    size += input.size();
  }
  const std::size_t most = kibibytesOfAny + GetParam().bytesPerByte * size / 1024;
  const CommandResult result =
      runShell("cd \"$1\"; ulimit -v \"$2\"; ulimit -t 120; exec $skeigiot " + std::string(GetParam().script),
               {folder.path(""), std::to_string(most)});
  EXPECT_EQ(0, result.status) << result.errors;
}

INSTANTIATE_TEST_SUITE_P(
    Where, Budget,
    ::testing::Values(
        Case{"EachLineNamesAnotherPerson", {linesOf(20000)}, 128, "replay --quiet --format jsonl 1"},
        Case{"EachLineOfAStreamDoes", {linesOf(20000)}, 128, "stream < 1 > answers"},
        Case{"EachLineOfAReportDoes", {linesOf(20000)}, 256, "report --format jsonl 1 -o report.html"},
        Case{"EachLineOfManyInputsDoes",
             {linesOf(3000), linesOf(3000, 3000), linesOf(3000, 6000), linesOf(3000, 9000), linesOf(3000, 12000)},
             128,
             "replay --quiet --format jsonl 1 2 3 4 5"},
        Case{"PersonsAreInManyScopes", {lineOfOpenScopes(100) + linesOf(5000)}, 128, "replay --quiet --format jsonl 1"},
        Case{"PersonsOfAStreamAreInManyScopes", {lineOfOpenScopes(100) + linesOf(5000)}, 128, "stream < 1 > answers"},
        Case{"PersonsAreInManyLabels",
             {linesOf(2000), labelsAtOnce(1000)},
             128,
             "replay --quiet --format jsonl 1 --scopes 2"},
        Case{"PersonsOfAReportAreInManyLabels",
             {linesOf(2000), labelsAtOnce(1000)},
             256,
             "report --format jsonl 1 --scopes 2 -o report.html"}),
    support::RowName());

}  // namespace
