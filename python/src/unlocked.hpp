#pragma once

#include <pybind11/pybind11.h>

#include <cxxabi.h>

/// \file
/// The interpreter lock: released for calls into the library, and acquired again for calls into Python.
///
/// When the program ends, Python ends each other thread that asks for the interpreter lock, inside any functions that
/// called it: these would then clean up without the lock, beside an interpreter that is being destroyed. Such a thread
/// waits here instead, until the process has ended. It is a daemon thread: Python waits for all others.

namespace binding
{

/// Waits for the end of the process.
[[noreturn]] void waitForTheEnd();

/// Returns whether Python is ending.
bool isEnding();

/// Registers the function that ends the process while daemon threads are still in the library; called once.
void endWithoutDaemonThreads();

/// Runs a function of Python's C interface, which holds nothing that needs cleaning up.
template <typename Function>
auto unlessEnding(Function function)
{
  try
  {
    return function();
  }
  catch (abi::__forced_unwind&)  // this is how Python ends a thread
  {
    waitForTheEnd();
  }
}

/// Releases the interpreter lock while it lives.
class Released
{
public:
  Released();
  Released(const Released&) = delete;
  Released& operator=(const Released&) = delete;
  ~Released();

private:
  PyThreadState* _state;
};

/// Guard of every call that may take a mutex of the library: it releases the interpreter lock for its run. So a thread
/// that waits for a mutex never keeps the holder of the mutex from calling back into Python.
using Unlocked = pybind11::call_guard<Released>;

/// As above, for a part of a call.
template <typename Function>
auto unlocked(Function function)
{
  const Released released;
  return function();
}

/// Runs a function with the interpreter lock, from any callback of the library.
template <typename Function>
auto locked(Function function)
{
  return unlessEnding([&function] {
    const pybind11::gil_scoped_acquire acquired;
    return function();
  });
}

/// Calls a function written in Python; to be called with the interpreter lock held.
///
/// \throws pybind11::error_already_set if it raises.
pybind11::object callPython(const pybind11::object& callable, const pybind11::tuple& arguments = pybind11::tuple());

}  // namespace binding
