#include "module.hpp"

PYBIND11_MODULE(_skeigiot, module)
{
  module.doc() = "Estimates how the persons in front of a robot feel and attend.";
  bindReplay(module);
}
