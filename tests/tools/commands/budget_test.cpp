#include "librecordings/limitedchild.hpp"
#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

/// \file
/// The budget of memory that SECURITY.md states, for the built command.

namespace
{

using namespace replaytests;

constexpr std::size_t kibibytesOfAny = std::size_t{256} << 10U;
constexpr std::size_t bytesPerByte = 128;

TEST(Budget, HoldsWhereEachLineNamesAnotherPerson)
{
  if (!support::memoryCanBeLimited)
    GTEST_SKIP() << "sanitizers take address space without a measure";
  constexpr std::int64_t begin = 1577836800000000000;  // [ns] since 1970
  std::string lines;
  for (int person = 0; person < 5000; ++person)
    lines += "{\"time\":" + std::to_string(begin + person) + ",\"person\":" + std::to_string(person) + "}\n";
  const TemporaryFolder folder;
  const std::size_t most = kibibytesOfAny + bytesPerByte * lines.size() / 1024;
  const CommandResult result = runShell("ulimit -v \"$2\"; exec $skeigiot replay --quiet \"$1\"",
                                        {folder.write("persons.jsonl", lines), std::to_string(most)});
  EXPECT_EQ(0, result.status) << result.errors;
}

}  // namespace
