#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <vector>

namespace binding
{

/// Decodes text that may hold the name of a file, which is any bytes: as Python's os.fsdecode() does.
pybind11::str textOf(const std::string& bytes);

/// As above, for each text.
pybind11::list textsOf(const std::vector<std::string>& texts);

}  // namespace binding
