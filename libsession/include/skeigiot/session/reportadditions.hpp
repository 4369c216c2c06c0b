#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// The parts of a report that do not come from the session.
struct SKEIGIOT_API ReportAdditions
{
  std::vector<std::string> learned;        ///< what was learned of the faces at rest, as Outcome::learned
  std::vector<recordings::Labels> labels;  ///< of coders, drawn beside the estimate
  AgreementOptions labelOptions;           ///< what the labels mean; only their reading counts, not the comparison
  std::string video;                       ///< address of a video, relative to the page, as in a link; empty: none
  double videoOffset = 0.;                 ///< [s] of the session at which the video begins
};

}  // namespace KV::session
