#pragma once

#include "report/reportrecorder.hpp"

#include <skeigiot/session/reportoverview.hpp>

namespace KV::session
{

/// Returns what an index shows of the recording; the recorder must have finished.
ReportOverview overviewOf(const ReportRecorder& recorder);

}  // namespace KV::session
