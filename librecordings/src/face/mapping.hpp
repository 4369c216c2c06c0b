#pragma once

#include "face/blendshapes.hpp"
#include "face/scoretable.hpp"

#include <optional>
#include <string>

namespace KV::recordings
{

/// How the columns of py-feat count where its versions differ.
struct PyFeatConventions
{
  std::optional<bool> degrees;    ///< of Pitch, Roll, Yaw; without it, found out
  std::optional<bool> pitchIsUp;  ///< Pitch > 0 is up; without it, found out
  bool gazeYawIsLeft = true;      ///< gaze_yaw > 0 is to the own left
  bool gazePitchIsUp = true;      ///< gaze_pitch > 0 is up
};

/// All that is a judgement in reading what front ends write, and no fact: a user may see it otherwise.
struct Mapping
{
  ScoreTable actionUnits;
  ScoreTable pyFeatActionUnits;  ///< as the action units, but for what it names itself
  ScoreTable blendshapes;
  ScoreTable arkit;
  EyeScale eyes;
  ScoreTable emotions;
  PyFeatConventions pyFeat;
};

/// Returns the built-in mapping, with what this JSON file replaces; the name of the file may be empty.
///
/// \throws Error if the file cannot be read or used: names the member, and what was expected.
Mapping readMapping(const std::string& file);

}  // namespace KV::recordings
