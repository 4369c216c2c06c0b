#pragma once

#include <nlohmann/json.hpp>

#include <map>
#include <string>

namespace tables
{

/// The input of one table row for the library, and the library's answer: names with numbers, words and truths.
///
/// The tables are run in every language of the library's bindings, each with operations of the same names.
using Operation = nlohmann::json (*)(const nlohmann::json& arguments);

/// Returns the operation of each table, by the name of its file.
const std::map<std::string, Operation>& operations();

/// \name Numbers
/// JSON has no NaN and no infinities: the texts "NaN", "Infinity" and "-Infinity" are used.
/// @{
float numberFrom(const nlohmann::json& number);
nlohmann::json numberOf(float number);
/// @}

}  // namespace tables
