#include <skeigiot/session/possiblejobs.hpp>

#include <sys/resource.h>

#include <algorithm>

namespace KV::session
{

namespace
{

constexpr std::size_t filesBesideSessions = 32;  // standard streams, exports, and other open files of the process
constexpr std::size_t filesOfASession = 4;       // a bag's database, its temporary files, and an unpacked copy

}  // namespace

std::size_t possibleJobs(std::size_t wanted)
{
  struct rlimit limit = {};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
    return wanted;
  const std::size_t files = limit.rlim_cur;
  const std::size_t possible = files > filesBesideSessions ? (files - filesBesideSessions) / filesOfASession : 1;
  return std::min(wanted, std::max<std::size_t>(possible, 1));
}

}  // namespace KV::session
