#pragma once

#include <string>
#include <string_view>

namespace fuzz
{

/// The input as a file in memory, for functions that read files; removed with the object.
class InputAsFile
{
public:
  explicit InputAsFile(std::string_view input);
  ~InputAsFile();
  InputAsFile(const InputAsFile&) = delete;
  InputAsFile& operator=(const InputAsFile&) = delete;

  /// Returns the path with which it can be opened, any number of times.
  std::string path() const { return "/proc/self/fd/" + std::to_string(_file); }

private:
  int _file;
};

}  // namespace fuzz
