#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <functional>

#include <unistd.h>

namespace support
{

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool memoryCanBeLimited = false;  // sanitizers use address space without a limit
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
constexpr bool memoryCanBeLimited = false;
#else
constexpr bool memoryCanBeLimited = true;
#endif
#else
constexpr bool memoryCanBeLimited = true;
#endif

inline void limit(__rlimit_resource_t resource, std::size_t bytes)
{
  const rlimit most{bytes, bytes};
  setrlimit(resource, &most);
}

/// Returns how many bytes of address space the process has.
inline std::size_t addressSpace()
{
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// For the statement of an EXPECT_EXIT(): runs `work` with a limit of so many more bytes of address space, and of so
/// many bytes in each file that it writes, and ends the process with status 0 if it returns true.
[[noreturn]] inline void runLimited(std::size_t memory, std::size_t file, const std::function<bool()>& work)
{
  std::signal(SIGXFSZ, SIG_IGN);
  if (memoryCanBeLimited)
    limit(RLIMIT_AS, addressSpace() + memory);
  limit(RLIMIT_FSIZE, file);
  std::_Exit(work() ? 0 : 1);
}

}  // namespace support
