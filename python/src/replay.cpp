#include "module.hpp"

void bindReplay(pybind11::module_&) {}
