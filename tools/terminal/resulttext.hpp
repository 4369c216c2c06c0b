#pragma once

#include <skeigiot/session/summary.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Returns the result of a session in one sentence for each of few persons, or in one for many: the verdict on the
/// whole recording, the mean valence, and how long the persons looked at the robot.
///
/// \param scope  name of the scope that is the whole recording.
/// \pre the summary is finished.
std::string resultText(const session::Summary& summary, const std::string& scope);

/// Returns how the recording was read, in one line made from the reader's description.
std::string readingText(const std::vector<std::string>& description);

}  // namespace KV::tools
