#pragma once

#include <cstdlib>
#include <string>

namespace livetests
{

/// Returns the variable of the environment with the options of the address sanitizer, "ASAN_OPTIONS=...", for a program
/// that a test runs; no other variable of the machine may matter to a test.
inline std::string sanitizerOptions()
{
  const char* const options = std::getenv("ASAN_OPTIONS");  // NOLINT(concurrency-mt-unsafe): nobody sets any
  return std::string("ASAN_OPTIONS=") + (options == nullptr ? "" : options);
}

}  // namespace livetests
