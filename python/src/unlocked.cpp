#include "unlocked.hpp"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace py = pybind11;

namespace binding
{

namespace
{

/// How many calls are in the library without the interpreter lock.
std::atomic<int> calls{0};

/// The library's process-wide objects would now be destroyed, and the daemon threads use them.
void endAtOnce(int status, void*)
{
  if (calls.load() == 0)
    return;
  std::cout.flush();
  std::fflush(stdout);
  ::_exit(status);
}

}  // namespace

void waitForTheEnd()
{
  while (true)
    std::this_thread::sleep_for(std::chrono::hours(1));
}

bool isEnding()
{
#if PY_VERSION_HEX >= 0x030D0000
  return Py_IsInitialized() == 0 || Py_IsFinalizing() != 0;
#else
  return Py_IsInitialized() == 0 || _Py_IsFinalizing() != 0;
#endif
}

// Registered last of all, so it runs before all other functions at the end.
void endWithoutDaemonThreads()
{
  Py_AtExit([] { ::on_exit(&endAtOnce, nullptr); });
}

Released::Released() : _state(PyEval_SaveThread())
{
  ++calls;
}

Released::~Released()
{
  unlessEnding([this] { PyEval_RestoreThread(_state); });
  --calls;
}

py::object callPython(const py::object& callable, const py::tuple& arguments)
{
  PyObject* const result = unlessEnding([&] { return PyObject_CallObject(callable.ptr(), arguments.ptr()); });
  if (result == nullptr)
    throw py::error_already_set();
  return py::reinterpret_steal<py::object>(result);
}

}  // namespace binding
