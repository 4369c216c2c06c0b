#pragma once

#include "report/reportrecorder.hpp"

#include <skeigiot/session/reportoverview.hpp>

namespace KV::session
{

/// Returns the recording's entry in an index; the recorder must have finished.
ReportOverview overviewOf(const ReportRecorder& recorder);

}  // namespace KV::session
