#pragma once

#include "expectedvalue.hpp"
#include "times.hpp"

#include <skeigiot/timestamped.hpp>

#include <pybind11/pybind11.h>

#include <boost/optional/optional.hpp>

#include <string>
#include <type_traits>

/// \file
/// Readings: values with their times, in Python the class Timestamped.

namespace binding
{

struct AnyTimestamped
{
  ko::SystemClock::time_point time;
  pybind11::object value;
};

/// Defines the class Timestamped.
void bindTimestamped(pybind11::module_& module);

/// Divides a Timestamped or a pair (time, value); anything else is a value of the time `now`.
AnyTimestamped stampedFrom(pybind11::handle source, ko::SystemClock::time_point now);

/// Returns whether this is True or False, of Python or of NumPy.
bool isTruth(pybind11::handle value);

/// \throws pybind11::type_error always, with the wrong value, and the expected one.
[[noreturn]] void refuseReading(pybind11::handle value, const std::string& what, const std::string& expected);

/// As above, with a value of type T.
///
/// \param what the name of the reading in error messages
/// \throws pybind11::type_error, pybind11::value_error with the name at the begin, if time or value are wrong.
template <typename T>
KV::Timestamped<T> readingFrom(pybind11::handle source, ko::SystemClock::time_point now, const std::string& what)
{
  namespace py = pybind11;
  if (py::isinstance<py::tuple>(source) &&
      (py::len(source) != 2 || !isTime(py::reinterpret_borrow<py::tuple>(source)[0])))
    refuseReading(source, what, expectedValue<T>);
  const AnyTimestamped any = stampedFrom(source, now);
  py::detail::make_caster<T> caster;
  const bool isNoTruth = std::is_same_v<T, bool> && !isTruth(any.value);  // a score of 0.1 would become true
  if (isNoTruth || !caster.load(any.value, true))
    refuseReading(any.value, what, expectedValue<T>);
  return {any.time, py::detail::cast_op<T>(caster)};
}

template <typename T>
pybind11::object objectOf(const KV::Timestamped<T>& reading)
{
  return pybind11::cast(AnyTimestamped{reading.time, pybind11::cast(reading.value)});
}

}  // namespace binding
