#include "cli/standardinput.hpp"

#include "cli/messages.hpp"
#include "cli/waiting.hpp"

#include <array>
#include <cerrno>
#include <cstddef>
#include <iostream>
#include <streambuf>
#include <system_error>
#include <vector>

#include <unistd.h>

namespace KV::tools
{

namespace
{

class StandardInput : public std::streambuf
{
protected:
  int_type underflow() override
  {
    const ssize_t count = _read();
    if (count == 0)
      return traits_type::eof();
    setg(_bytes.data(), _bytes.data(), _bytes.data() + count);
    return traits_type::to_int_type(_bytes.front());
  }

private:
  ssize_t _read()
  {
    for (;;)
    {
      std::vector<pollfd> input{{STDIN_FILENO, POLLIN, 0}};
      if (!waitFor(input))
        continue;
      const ssize_t count = ::read(STDIN_FILENO, _bytes.data(), _bytes.size());
      if (count >= 0)
        return count;
      if (errno != EINTR && errno != EAGAIN)
        throw std::system_error(errno, std::generic_category(), "standard input");
    }
  }

  std::array<char, std::size_t{64} << 10U> _bytes{};
};

}  // namespace

bool isStandardInput(const std::string& path)
{
  return path == "-";
}

std::string nameOf(const std::string& path)
{
  return isStandardInput(path) ? "standard input" : path;
}

session::SessionInputs named(session::SessionInputs session)
{
  for (session::SessionInputs::Input& input : session.inputs)
    input.path = nameOf(input.path);
  return session;
}

std::istream& standardInput()
{
  static StandardInput bytes;
  if (isatty(STDIN_FILENO) == 1)
    Messages(std::cerr, false).note("reads a recording from the terminal; Ctrl-D ends it");
  static std::istream stream(&bytes);
  stream.exceptions(std::ios::badbit);  // lets Interrupted through
  return stream;
}

}  // namespace KV::tools
