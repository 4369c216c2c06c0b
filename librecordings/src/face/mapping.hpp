#pragma once

#include "face/blendshapes.hpp"
#include "face/scoretable.hpp"
#include "recording/speakertable.hpp"
#include "recording/xdfmapping.hpp"

#include <optional>
#include <string>

namespace KV::recordings
{

/// The signs and units of py-feat's columns, where its versions differ.
struct PyFeatConventions
{
  std::optional<bool> degrees;    ///< of Pitch, Roll, Yaw; detected if empty
  std::optional<bool> pitchIsUp;  ///< Pitch > 0 is up; detected if empty
  bool gazeYawIsLeft = true;      ///< gaze_yaw > 0 is to the person's own left
  bool gazePitchIsUp = true;      ///< gaze_pitch > 0 is up
};

/// All judgements in reading the output of front ends: a user may decide otherwise.
struct Mapping
{
  ScoreTable actionUnits;
  ScoreTable pyFeatActionUnits;  ///< like actionUnits, except for the readings that it sets itself
  ScoreTable blendshapes;
  ScoreTable arkit;
  EyeScale eyes;
  ScoreTable emotions;
  PyFeatConventions pyFeat;
  SpeakerTable speakers;
  XdfMapping streams;
};

/// Returns the built-in mapping, changed by this JSON file; the name of the file may be empty.
///
/// \throws Error if the file cannot be read or used: names the member and the expected value.
Mapping readMapping(const std::string& file);

}  // namespace KV::recordings
