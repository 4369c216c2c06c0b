#pragma once

#include <skeigiot/session/cycle.hpp>

#include <pybind11/pybind11.h>

namespace binding
{

/// Reads a number of updates a second, or "recorded".
///
/// \throws py::value_error for another number or text, py::type_error for another type.
KV::session::Cycle cycleFrom(const pybind11::object& cycle);

}  // namespace binding
