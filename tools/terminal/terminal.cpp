#include "terminal/terminal.hpp"

#include <cstdlib>

#include <sys/ioctl.h>
#include <unistd.h>

namespace KV::tools
{

namespace
{

std::string environment(const char* name)
{
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

bool isTerminal(int fileDescriptor)
{
  return isatty(fileDescriptor) == 1;
}

int terminalWidth(int fileDescriptor, int otherwise)
{
  winsize size{};
  const bool isKnown = isTerminal(fileDescriptor) && ioctl(fileDescriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : otherwise;
}

bool useColors(ColorChoice choice, int fileDescriptor)
{
  if (choice != ColorChoice::Auto)
    return choice == ColorChoice::Always;
  return isTerminal(fileDescriptor) && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

std::string Style::_marked(const char* code, const std::string& text) const
{
  return _colors ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
}

}  // namespace KV::tools
