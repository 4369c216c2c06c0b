#pragma once

#include <pybind11/pybind11.h>

#include <utility>

namespace binding
{

/// What every call gets that may take a mutex of the library: it releases the interpreter lock for its run. So whoever
/// waits for a mutex never keeps its holder from calling back into Python.
using Unlocked = pybind11::call_guard<pybind11::gil_scoped_release>;

/// As above, for a part of a call.
template <typename Function>
auto unlocked(Function function)
{
  const pybind11::gil_scoped_release released;
  return function();
}

}  // namespace binding
