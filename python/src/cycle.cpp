#include "cycle.hpp"

#include <string>

namespace py = pybind11;

namespace binding
{

KV::session::Cycle cycleFrom(const py::object& cycle)
{
  using KV::session::Cycle;
  const std::string expected = "cycle: expected a number of updates a second above 0, up to 1000, or 'recorded', got " +
                               std::string(py::repr(cycle));
  if (py::isinstance<py::str>(cycle))
  {
    if (cycle.cast<std::string>() == "recorded")
      return Cycle::recorded();
    throw py::value_error(expected);
  }
  const double hertz = PyFloat_AsDouble(cycle.ptr());
  if (PyErr_Occurred() != nullptr)
  {
    PyErr_Clear();
    throw py::type_error(expected);
  }
  if (!(hertz > 0. && hertz <= Cycle::highest))
    throw py::value_error(expected);
  return Cycle{hertz};
}

}  // namespace binding
