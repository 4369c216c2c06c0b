#include "serve/openbrowser.hpp"

#include <spawn.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemps is not in the C++ header
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <fcntl.h>

namespace KV::tools
{

namespace
{

std::string folderOfUser()
{
  const char* const own = std::getenv("XDG_RUNTIME_DIR");
  std::error_code error;
  return own != nullptr && std::filesystem::is_directory(own, error) ? own
                                                                     : std::filesystem::temp_directory_path().string();
}

/// Runs `xdg-open FILE` without input and output of its own, and in a session of its own: a browser that it starts
/// would otherwise get the Ctrl-C that ends this command.
void open(const std::string& path)
{
  std::string command = "xdg-open";
  std::string file = path;
  std::array<char*, 3> arguments{command.data(), file.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_RDWR, 0);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  pid_t process = 0;
  if (posix_spawnp(&process, command.c_str(), &actions, &attributes, arguments.data(), environ) == 0)
    std::signal(SIGCHLD, SIG_IGN);  // nobody waits for it
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
}

}  // namespace

bool hasDesktop()
{
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

OpenedBrowser::OpenedBrowser(const std::string& address)
{
  constexpr std::string_view ending = ".html";
  std::string file = folderOfUser() + "/skeigiot-XXXXXX" + std::string(ending);
  const int descriptor = mkostemps(file.data(), static_cast<int>(ending.size()), O_CLOEXEC);
  if (descriptor < 0)
    return;
  _file = file;
  const std::string page =
      "<!doctype html><meta charset=\"utf-8\"><meta http-equiv=\"refresh\" content=\"0;url=" + address + "\">\n";
  const bool isWritten = ::write(descriptor, page.data(), page.size()) == static_cast<ssize_t>(page.size());
  ::close(descriptor);
  if (isWritten)
    open(_file);
}

OpenedBrowser::~OpenedBrowser()
{
  if (!_file.empty())
    ::unlink(_file.c_str());
}

}  // namespace KV::tools
