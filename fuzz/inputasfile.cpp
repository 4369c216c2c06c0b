#include "inputasfile.hpp"

#include "target.hpp"

#include <sys/mman.h>
#include <unistd.h>

namespace fuzz
{

InputAsFile::InputAsFile(std::string_view input) : _file(memfd_create("input", MFD_CLOEXEC))
{
  expect(_file >= 0, "a file in memory can be made");
  expect(::write(_file, input.data(), input.size()) == static_cast<ssize_t>(input.size()), "and written");
}

InputAsFile::~InputAsFile()
{
  ::close(_file);
}

}  // namespace fuzz
