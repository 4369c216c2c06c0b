#include "module.hpp"

namespace binding
{

void bindReplay(pybind11::module_&) {}

}  // namespace binding
