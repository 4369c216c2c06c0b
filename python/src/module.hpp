#pragma once

#include <pybind11/pybind11.h>

/// \file
/// What the extension is made of: each function adds the classes and functions of one concern.

void bindReplay(pybind11::module_& module);
