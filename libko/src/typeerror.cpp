#include <ko/typeerror.hpp>

namespace ko
{

TypeError::TypeError(const std::string& path, const std::string& message)
  : std::runtime_error(path.empty() ? message : path + ": " + message), _path(path)
{}

TypeError::~TypeError() = default;

}  // namespace ko
