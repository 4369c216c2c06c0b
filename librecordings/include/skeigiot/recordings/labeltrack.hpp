#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Values that a coder gave over time.
struct SKEIGIOT_API LabelTrack
{
  /// One value, at one time.
  struct Sample
  {
    double time = 0.;   ///< [s] since the start of the recording
    double value = 0.;  ///< on the coder's scale, finite
  };

  std::string quantity;         ///< name of the column: "value", "valence" or "attention"
  std::string person;           ///< as in LabelSpan
  std::string coder;            ///< as in LabelSpan
  std::string tier;             ///< as in LabelSpan
  std::vector<Sample> samples;  ///< by time, no two at the same
};

}  // namespace KV::recordings
