#pragma once

#include "report/reportrecorder.hpp"

#include <skeigiot/session/reportorigin.hpp>

#include <nlohmann/json.hpp>

#include <string>

namespace KV::session
{

/// Returns the data that the page of a report shows.
///
/// Series are little-endian arrays in base64; docs/report.md lists the members. Names from the recording are strings
/// and nothing else.
nlohmann::ordered_json reportData(const ReportRecorder& recorder, const ReportOrigin& origin);

/// Returns the data as text that is safe inside an HTML script element: it has no "<".
std::string textForScript(const nlohmann::ordered_json& data);

}  // namespace KV::session
