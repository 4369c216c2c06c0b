#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <utility>
#include <vector>

/// \file
/// What is the same for all records in Python: how they are shown, compared and pickled.

namespace binding
{

/// Returns the fewest digits that give the same single-precision number back, as Python spells a float.
std::string shortest(float number);

/// Returns the repr() of an attribute; a float is one of single precision.
std::string representation(pybind11::handle object);

/// Returns "Name(first=..., second=...)".
std::string representation(pybind11::handle record, const std::vector<const char*>& fields);

/// Defines __repr__, __eq__ (field by field, so that NaN differs from NaN) and __reduce__ (for copies and pickles) of a
/// mutable record that is made from these attributes, in this order.
template <typename Class>
void describeRecord(Class& record, const std::vector<const char*>& fields)
{
  namespace py = pybind11;
  record.def("__repr__", [fields](const py::object& self) { return representation(self, fields); });
  record.def(
      "__eq__",
      [fields](const py::object& self, const py::object& other) -> py::object {
        if (!py::type::of(self).is(py::type::of(other)))
          return py::reinterpret_borrow<py::object>(Py_NotImplemented);
        for (const char* field : fields)
          if (!self.attr(field).equal(other.attr(field)))
            return py::bool_(false);
        return py::bool_(true);
      },
      py::arg("other"));
  record.def("__reduce__", [fields](const py::object& self) {
    py::tuple arguments(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i)
      arguments[i] = self.attr(fields[i]);
    return py::make_tuple(py::type::of(self), arguments);
  });
}

/// Lets annotations name the type that a class is generic in, as in ValueConfidence[bool].
void allowTypeParameter(pybind11::handle record);

}  // namespace binding
