#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace tables
{

/// What one row of a table asks of the library, and what the library answers: names with numbers, words and truths.
///
/// The tables are run through every language that the library is bound to, each with operations of the same names.
using Operation = nlohmann::json (*)(const nlohmann::json& arguments);

/// Returns the operation of each table, by the name of its file.
const std::map<std::string, Operation>& operations();

/// \name Numbers
/// JSON has no NaN and no infinities; "NaN", "Infinity" and "-Infinity" stand for them.
/// @{
float numberFrom(const nlohmann::json& number);
nlohmann::json numberOf(float number);
/// @}

}  // namespace tables
