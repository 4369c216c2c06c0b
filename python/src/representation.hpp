#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <utility>
#include <vector>

/// \file
/// Shared by all records in Python: how they are shown, compared and pickled.

namespace binding
{

/// Returns the fewest digits that give the same single-precision number back, as Python spells a float.
std::string shortest(float number);

/// Returns the repr() of an attribute; a float is one of single precision.
std::string representation(pybind11::handle object);

/// Returns "Name(first=..., second=...)".
std::string representation(pybind11::handle record, const std::vector<const char*>& fields);

/// Returns the text in UTF-8.
///
/// \throws pybind11::value_error that names the text, if it has half a surrogate pair, which UTF-8 cannot hold.
std::string utf8(const pybind11::str& text, const char* what);

/// Defines __copy__, __deepcopy__ and __reduce_ex__ of a class whose objects are not copied: they raise TypeError with
/// this text.
template <typename Class>
void refuseCopies(Class& record, const std::string& why)
{
  const auto refuse = [why](const pybind11::object&, const pybind11::args&) -> pybind11::object {
    throw pybind11::type_error(why);
  };
  for (const char* name : {"__copy__", "__deepcopy__", "__reduce_ex__"})
    if (!record.attr("__dict__").contains(name))
      record.def(name, refuse);
}

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

/// Lets annotations name the type of a generic class's value, as in ValueConfidence[bool].
void allowTypeParameter(pybind11::handle record);

}  // namespace binding
