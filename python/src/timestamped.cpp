#include "timestamped.hpp"

#include "representation.hpp"

#include <string_view>

namespace py = pybind11;

namespace binding
{

AnyTimestamped stampedFrom(py::handle source, ko::SystemClock::time_point now)
{
  if (py::isinstance<AnyTimestamped>(source))
    return source.cast<AnyTimestamped>();
  if (!py::isinstance<py::tuple>(source))
    return {now, py::reinterpret_borrow<py::object>(source)};
  const auto pair = py::reinterpret_borrow<py::tuple>(source);
  return {timeFrom(pair[0]), pair[1]};
}

bool isTruth(py::handle value)
{
  const std::string_view type = Py_TYPE(value.ptr())->tp_name;
  return PyBool_Check(value.ptr()) || type == "numpy.bool_" || type == "numpy.bool";
}

void refuseReading(py::handle value, const std::string& what, const std::string& expected)
{
  throw py::type_error(what + " cannot be " + representation(value) + ": expected " + expected +
                       "; a pair is (time, value)");
}

void bindTimestamped(py::module_& module)
{
  py::class_<AnyTimestamped> record(module, "Timestamped",
                                    "A value with the time at which it was observed; cannot be changed, and unpacks as "
                                    "a pair: time, smile = observation.smile.\n\n"
                                    "One is greater than another if its time is, whatever the values.");
  record
      .def(py::init([](ko::SystemClock::time_point time, py::object value) {
             return AnyTimestamped{time, std::move(value)};
           }),
           py::arg("time"), py::arg("value"))
      .def_readonly("time", &AnyTimestamped::time, "nanoseconds since the Unix epoch")
      .def_property_readonly(
          "datetime", [](const AnyTimestamped& self) { return datetimeOf(self.time); },
          "the time as an aware datetime in UTC, without the nanoseconds within its microsecond")
      .def_readonly("value", &AnyTimestamped::value)
      .def("__iter__",
           [](const AnyTimestamped& self) { return py::make_tuple(self.time, self.value).attr("__iter__")(); })
      .def("__hash__", [](const AnyTimestamped& self) { return py::hash(py::make_tuple(self.time, self.value)); })
      .def(
          "__gt__", [](const AnyTimestamped& self, const AnyTimestamped& other) { return self.time > other.time; },
          py::is_operator(), py::arg("other"))
      .def(
          "__lt__", [](const AnyTimestamped& self, const AnyTimestamped& other) { return self.time < other.time; },
          py::is_operator(), py::arg("other"));
  describeRecord(record, {"time", "value"});
  allowTypeParameter(record);
}

}  // namespace binding
