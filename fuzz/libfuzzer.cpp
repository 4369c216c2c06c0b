#include "cost.hpp"
#include "target.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

/// The entry of libFuzzer; the environment variable FUZZ_TARGET names the target.

namespace
{

const fuzz::Target& chosenTarget()
{
  const char* const name = std::getenv("FUZZ_TARGET");
  const auto& all = fuzz::targets();
  const auto found =
      std::find_if(all.begin(), all.end(), [name](const fuzz::Target& target) { return name && target.name == name; });
  if (found != all.end())
    return *found;
  std::fputs("FUZZ_TARGET must be one of:\n", stderr);
  for (const fuzz::Target& target : all)
    std::fprintf(stderr, "%s\n", target.name.data());
  std::exit(2);
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is that of libFuzzer
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const fuzz::Target& target = chosenTarget();
  fuzz::runWithinBudget(target, {reinterpret_cast<const char*>(data), size});
  return 0;
}
