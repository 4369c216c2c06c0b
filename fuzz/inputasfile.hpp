#pragma once

#include <string>
#include <string_view>

namespace fuzz
{

/// The input as a file in memory, for what reads files; gone with the object.
class InputAsFile
{
public:
  explicit InputAsFile(std::string_view input);
  ~InputAsFile();
  InputAsFile(const InputAsFile&) = delete;
  InputAsFile& operator=(const InputAsFile&) = delete;

  /// Returns by which path it may be opened, as often as one likes.
  std::string path() const { return "/proc/self/fd/" + std::to_string(_file); }

private:
  int _file;
};

}  // namespace fuzz
