#pragma once

#include "report/reportrecorder.hpp"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// Returns what the page of a report shows.
///
/// Series are little-endian arrays in base64; docs/report.md lists the members. Names from the recording are strings
/// and nothing else.
nlohmann::ordered_json reportData(const ReportRecorder& recorder, const std::vector<std::string>& inputs,
                                  const std::vector<std::string>& notes);

/// Returns the data as text that can stand in an HTML script element: no "<" is left in it.
std::string textForScript(const nlohmann::ordered_json& data);

}  // namespace KV::session
