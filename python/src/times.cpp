#include "times.hpp"

#include "module.hpp"

#include <datetime.h>

namespace py = pybind11;

namespace binding
{

namespace
{

constexpr std::int64_t nanosecondsInAMicrosecond = 1000;

/// Gives access to the C interface of datetime, which is a table that is filled on first use.
void needDatetime()
{
  if (!PyDateTimeAPI)
    PyDateTime_IMPORT;
  if (!PyDateTimeAPI)
    throw py::error_already_set();
}

bool isInteger(py::handle source)
{
  return PyIndex_Check(source.ptr()) && !PyBool_Check(source.ptr());
}

py::object epoch()
{
  return py::module_::import("datetime")
      .attr("datetime")(1970, 1, 1, py::arg("tzinfo") = py::handle(PyDateTime_TimeZone_UTC));
}

/// Converts an int of any kind, including those of numpy.
std::int64_t integerFrom(py::handle source, const char* what)
{
  const auto integer = py::reinterpret_steal<py::object>(PyNumber_Index(source.ptr()));
  if (!integer)
    throw py::error_already_set();
  int overflow = 0;
  const std::int64_t number = PyLong_AsLongLongAndOverflow(integer.ptr(), &overflow);
  if (overflow != 0)
    throw py::value_error(std::string(what) + " does not fit into 64-bit nanoseconds: " + std::string(py::str(source)));
  return number;
}

/// Counts in Python's integers, which do not overflow; a timedelta of pandas has nanoseconds besides its microseconds.
std::int64_t nanosecondsIn(const py::object& delta, const char* what)
{
  const auto part = [&delta](const char* name) { return py::object(delta.attr(name)); };
  const py::object seconds = part("days") * py::int_(86400) + part("seconds");
  const py::object microseconds = seconds * py::int_(1000000) + part("microseconds");
  const py::object rest = py::getattr(delta, "nanoseconds", py::int_(0));
  return integerFrom(microseconds * py::int_(nanosecondsInAMicrosecond) + rest, what);
}

std::int64_t flooredQuotient(std::int64_t dividend, std::int64_t divisor)
{
  return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

}  // namespace

bool isTime(py::handle source)
{
  needDatetime();
  return isInteger(source) || PyDateTime_Check(source.ptr());
}

ko::SystemClock::time_point timeFrom(py::handle source)
{
  if (!isTime(source))
    throw py::type_error("a time is an aware datetime or an int of nanoseconds since the epoch, not " +
                         std::string(py::repr(source)));
  if (isInteger(source))
    return ko::SystemClock::time_point(boost::chrono::nanoseconds(integerFrom(source, "the time")));
  if (source.attr("utcoffset")().is_none())
    throw py::value_error("the datetime " + source.attr("isoformat")().cast<std::string>() +
                          " has no time zone, so it could be any of many times; give it one, such as timezone.utc");
  const py::object sinceEpoch = py::reinterpret_borrow<py::object>(source) - epoch();
  return ko::SystemClock::time_point(boost::chrono::nanoseconds(nanosecondsIn(sinceEpoch, "the time")));
}

py::object datetimeOf(ko::SystemClock::time_point time)
{
  needDatetime();
  const std::int64_t microseconds = flooredQuotient(nanosecondsOf(time), nanosecondsInAMicrosecond);
  return epoch() + py::module_::import("datetime").attr("timedelta")(py::arg("microseconds") = microseconds);
}

std::int64_t nanosecondsOf(ko::SystemClock::time_point time)
{
  return time.time_since_epoch().count();
}

boost::chrono::nanoseconds durationFrom(py::handle source)
{
  needDatetime();
  if (isInteger(source))
    return boost::chrono::nanoseconds(integerFrom(source, "the duration"));
  if (!PyDelta_Check(source.ptr()))
    throw py::type_error("a duration is a timedelta or an int of nanoseconds, not " + std::string(py::repr(source)));
  return boost::chrono::nanoseconds(nanosecondsIn(py::reinterpret_borrow<py::object>(source), "the duration"));
}

py::object timedeltaOf(boost::chrono::milliseconds duration)
{
  return py::module_::import("datetime").attr("timedelta")(py::arg("milliseconds") = duration.count());
}

void bindTimes(py::module_& module)
{
  module.def(
      "toNanoseconds", [](ko::SystemClock::time_point time) { return time; }, py::arg("time"),
      "Returns a time as integer nanoseconds since the Unix epoch.\n\n"
      "Raises ValueError for a datetime without a time zone, and for a time that 64-bit nanoseconds do not reach "
      "(before 1677 or after 2262).");
  module.def("toDatetime", &datetimeOf, py::arg("time"),
             "Returns a time as an aware datetime in UTC.\n\n"
             "A datetime has microseconds only: the nanoseconds within one are left out. Raises as toNanoseconds().");
}

}  // namespace binding
