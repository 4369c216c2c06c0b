#include "module.hpp"
#include "representation.hpp"
#include "threadscopes.hpp"
#include "times.hpp"
#include "unlocked.hpp"

#include <ko/systemclock.hpp>

#include <string>

namespace py = pybind11;

namespace binding
{

namespace
{

using Scopes = ThreadScopes<ko::ScopedClockSource>;

[[noreturn]] void refuseWithoutNow()
{
  PyErr_SetString(PyExc_NotImplementedError, "a class that derives from ClockSource must define now()");
  throw py::error_already_set();
}

/// \throws py::type_error, py::value_error with the name of the clock, if it did not return a time.
ko::SystemClock::time_point timeOf(const py::object& returned)
{
  try
  {
    return timeFrom(returned);
  }
  catch (const py::type_error& error)
  {
    throw py::type_error(std::string("now() of a ClockSource: ") + error.what());
  }
  catch (const py::value_error& error)
  {
    throw py::value_error(std::string("now() of a ClockSource: ") + error.what());
  }
}

/// A clock source that is written in Python; takes the interpreter lock for each reading.
class PythonClockSource : public ko::ClockSource
{
public:
  ko::SystemClock::time_point now() override
  {
    return locked([this] {
      const py::function now = py::get_override(static_cast<const ko::ClockSource*>(this), "now");
      if (!now)
        refuseWithoutNow();
      return timeOf(callPython(now));
    });
  }
};

/// Makes a clock source the clock of the thread; the library's own scope lives only between enter and exit.
struct ScopedClockSource
{
  py::object source;
};

py::object now()
{
  return py::cast(ko::SystemClock::now());
}

void bindSources(py::module_& module)
{
  py::class_<ko::ClockSource, PythonClockSource>(
      module, "ClockSource",
      "Where SystemClock.now() may take the time from, see ScopedClockSource. Derive from it and define now(), which "
      "returns a datetime with a time zone or nanoseconds since the Unix epoch.")
      .def(py::init<>())
      .def("now", &ko::ClockSource::now, "Returns the current time of this source, in nanoseconds since the epoch.");

  py::class_<ko::ManualClock, ko::ClockSource>(
      module, "ManualClock",
      "A clock that moves only when the program moves it: for replays and tests. Safe from any thread.\n\n"
      "In a with statement it is the clock of this thread: with ManualClock(start) as clock: ...")
      .def(py::init<ko::SystemClock::time_point>(), py::arg("start"), "Makes a clock that shows this time.")
      .def("now", &ko::ManualClock::now, "Returns the time last set, in nanoseconds since the epoch.")
      .def("set", &ko::ManualClock::set, py::arg("time"), "Moves the clock to this time, forwards or backwards.")
      .def(
          "advance", [](ko::ManualClock& self, const py::object& step) { self.advance(durationFrom(step)); },
          py::arg("step"), "Moves the clock on by a timedelta or an int of nanoseconds, backwards if negative.")
      .def("__enter__",
           [](const py::object& self) {
             Scopes::enter(self, self.cast<ko::ClockSource&>());
             return self;
           })
      .def("__exit__", [](const py::object& self, const py::args&) { Scopes::leave(self); })
      .def("__repr__",
           [](ko::ManualClock& self) { return "ManualClock(" + std::to_string(nanosecondsOf(self.now())) + ")"; });
}

void bindScope(py::module_& module)
{
  py::class_<ScopedClockSource>(
      module, "ScopedClockSource",
      "In a with statement, SystemClock.now() on this thread reads the given source; other threads are unaffected.\n\n"
      "Scopes nest: the innermost one counts, and its end brings the one around it back. Leaving one on another "
      "thread, or before those inside it, raises RuntimeError.")
      .def(py::init([](const py::object& source) {
             source.cast<ko::ClockSource&>();  // raises if it has another type
             return ScopedClockSource{source};
           }),
           py::arg("source"))
      .def("__enter__",
           [](const py::object& self) {
             const auto& scope = self.cast<const ScopedClockSource&>();
             Scopes::enter(self, scope.source.cast<ko::ClockSource&>());
             return self;
           })
      .def("__exit__", [](const py::object& self, const py::args&) { Scopes::leave(self); });
}

}  // namespace

void bindClock(py::module_& module)
{
  py::class_<ko::SystemClock>(module, "SystemClock",
                              "The clock of the middleware: nanoseconds since the Unix epoch. Every age in the library "
                              "is \"now minus a time stamp\" on this clock.")
      .def(py::init<>())
      .def_static("now", &now,
                  "Returns the time of the innermost clock source of this thread, or the machine's wall clock if there "
                  "is none. Raises what a clock source raises.");
  bindSources(module);
  bindScope(module);
}

}  // namespace binding
