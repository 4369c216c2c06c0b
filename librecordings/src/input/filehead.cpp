#include "input/filehead.hpp"

#include <skeigiot/recordings/error.hpp>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace KV::recordings
{

std::string headOfFile(const std::string& path, std::size_t count)
{
  std::string head(count, '\0');
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0)
    throw Error({path, 0, {}}, std::string("cannot be opened: ") + std::strerror(errno));
  std::size_t done = 0;
  ssize_t read = 0;
  do
  {
    read = ::read(file, head.data() + done, count - done);
    done += read > 0 ? static_cast<std::size_t>(read) : 0;
  } while ((read > 0 && done < count) || (read < 0 && errno == EINTR));
  const int reason = read < 0 ? errno : 0;
  ::close(file);
  if (reason != 0)
    throw Error({path, 0, {}}, std::string("cannot be read: ") + std::strerror(reason));
  head.resize(done);
  return head;
}

}  // namespace KV::recordings
