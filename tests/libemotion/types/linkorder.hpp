#pragma once

#include <string>

/// Returns the class names that are not registered now, or registered with a member of unknown type.
std::string missingRecords();

/// Returns the result of missingRecords() when the unit of this function was initialised.
const std::string& earlyMissingRecords();
