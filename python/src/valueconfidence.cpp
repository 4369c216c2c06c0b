#include "valueconfidence.hpp"

#include "representation.hpp"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace binding
{

namespace
{

using Value = AnyValueConfidence::Value;

/// A bool stays a bool, an int an int; every other number becomes a float.
Value valueFrom(const py::object& source)
{
  if (PyBool_Check(source.ptr()))
    return source.cast<bool>();
  if (PyLong_Check(source.ptr()))
    return source.cast<std::int64_t>();
  if (py::isinstance<py::tuple>(source))
    return source.cast<AnyValueConfidence::Point>();
  return source.cast<float>();
}

AnyValueConfidence make(const py::object& value, float confidence)
{
  try
  {
    return {valueFrom(value), confidence};
  }
  catch (const py::cast_error&)
  {
    throw py::type_error("a value is a bool, an int, a float or a point (x, y), not " + representation(value));
  }
}

py::object valueOf(const AnyValueConfidence& self)
{
  return std::visit([](const auto& value) { return py::cast(value); }, self.value);
}

py::tuple asTuple(const AnyValueConfidence& self)
{
  return py::make_tuple(valueOf(self), self.confidence);
}

}  // namespace

AnyValueConfidence anyFromPair(const py::tuple& pair)
{
  if (pair.size() != 2)
    throw py::type_error("expected a pair (value, confidence), not " + representation(pair));
  return make(pair[0], pair[1].cast<float>());
}

void bindValueConfidence(py::module_& module)
{
  py::class_<AnyValueConfidence> record(module, "ValueConfidence",
                                        "A value with the confidence in it; cannot be changed, and unpacks as a pair: "
                                        "value, confidence = state.personValence().\n\n"
                                        "The value is a bool, an int, a float (of single precision) or a point (x, y), "
                                        "stored as given. Where one is expected, a pair (value, confidence) will do.");
  record
      .def(py::init(&make), py::arg("value") = 0.f, py::arg("confidence") = 0.f,
           "Stores both as given; the confidence is meant to lie in [0, 1] and is never tested here.")
      .def_property_readonly("value", &valueOf)
      .def_readonly("confidence", &AnyValueConfidence::confidence, "meant to lie in [0, 1]")
      .def("__iter__", [](const AnyValueConfidence& self) { return asTuple(self).attr("__iter__")(); })
      .def("__hash__", [](const AnyValueConfidence& self) { return py::hash(asTuple(self)); });
  describeRecord(record, {"value", "confidence"});
  allowTypeParameter(record);
}

}  // namespace binding
