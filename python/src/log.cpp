#include "module.hpp"
#include "silencedlog.hpp"
#include "times.hpp"
#include "unlocked.hpp"

#include <ko/log.hpp>

#include <pybind11/stl.h>

namespace py = pybind11;

namespace binding
{

namespace
{

constexpr int verboseLevel = 15;  // between DEBUG (10) and INFO (20)

/// Returns the level of Python's logging, or 0 for records that are not logged.
int pythonLevel(ko::log::Level level)
{
  switch (level)
  {
    case ko::log::Level::Silent:
      return 0;
    case ko::log::Level::Fatal:
      return 50;
    case ko::log::Level::Error:
      return 40;
    case ko::log::Level::Warning:
      return 30;
    case ko::log::Level::Info:
      return 20;
    case ko::log::Level::Verbose:
      return verboseLevel;
    case ko::log::Level::Debug:
      return 10;
  }
  return 0;
}

/// Decodes text that may not be UTF-8: a file name has the bytes that the system gave.
py::str text(const std::string& bytes)
{
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "backslashreplace"));
}

void handToLogging(const ko::log::Record& record, int level)
{
  const py::object getLogger = py::module_::import("logging").attr("getLogger");
  const py::object logger = callPython(getLogger, py::make_tuple(text(record.category)));
  if (!callPython(logger.attr("isEnabledFor"), py::make_tuple(level)).cast<bool>())
    return;
  py::dict extra;
  extra["koTime"] = nanosecondsOf(record.time);
  const py::object made =
      callPython(logger.attr("makeRecord"),
                 py::make_tuple(text(record.category), level, text(record.file), record.line, text(record.message),
                                py::tuple(), py::none(), text(record.function), extra));
  callPython(logger.attr("handle"), py::make_tuple(made));
}

/// Runs on any thread that logs, with or without the interpreter lock, and while mutexes of the library may be held.
void handle(const ko::log::Record& record)
{
  const int level = pythonLevel(record.level);
  if (level == 0 || SilencedLog::isOn() || isEnding())
    return;
  locked([&] {
    const py::error_scope pending;  // the call that logs may be about to raise
    handToLogging(record, level);
  });
}

void installHandler()
{
  py::module_::import("logging").attr("addLevelName")(verboseLevel, "VERBOSE");
  const ko::log::HandlerId id = ko::log::addHandler(&handle);
  py::module_::import("atexit").attr("register")(
      py::cpp_function([id] { unlocked([&] { ko::log::removeHandler(id); }); }));
}

}  // namespace

void bindLog(py::module_& module)
{
  module.def(
      "categories", [] { return ko::log::categories(); }, Unlocked(),
      "Returns the names of the categories that the library logs in, in ascending order.\n\n"
      "Each is a logger of Python's logging, which gets the records of the category with their level (Verbose is 15), "
      "file, line and function; koTime is the time by SystemClock in nanoseconds. Without any configuration, Python "
      "writes warnings and what is graver to standard error.");
  installHandler();
}

}  // namespace binding
