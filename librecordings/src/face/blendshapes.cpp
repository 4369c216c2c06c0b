#include "face/blendshapes.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace KV::recordings
{

const std::vector<std::string>& blendshapeNames()
{
  static const std::vector<std::string> names = {
      "browDownLeft",      "browDownRight",      "browInnerUp",         "browOuterUpLeft",
      "browOuterUpRight",  "cheekPuff",          "cheekSquintLeft",     "cheekSquintRight",
      "eyeBlinkLeft",      "eyeBlinkRight",      "eyeLookDownLeft",     "eyeLookDownRight",
      "eyeLookInLeft",     "eyeLookInRight",     "eyeLookOutLeft",      "eyeLookOutRight",
      "eyeLookUpLeft",     "eyeLookUpRight",     "eyeSquintLeft",       "eyeSquintRight",
      "eyeWideLeft",       "eyeWideRight",       "jawForward",          "jawLeft",
      "jawOpen",           "jawRight",           "mouthClose",          "mouthDimpleLeft",
      "mouthDimpleRight",  "mouthFrownLeft",     "mouthFrownRight",     "mouthFunnel",
      "mouthLeft",         "mouthLowerDownLeft", "mouthLowerDownRight", "mouthPressLeft",
      "mouthPressRight",   "mouthPucker",        "mouthRight",          "mouthRollLower",
      "mouthRollUpper",    "mouthShrugLower",    "mouthShrugUpper",     "mouthSmileLeft",
      "mouthSmileRight",   "mouthStretchLeft",   "mouthStretchRight",   "mouthUpperUpLeft",
      "mouthUpperUpRight", "noseSneerLeft",      "noseSneerRight"};
  return names;
}

bool isBlendshape(const std::string& name)
{
  return std::binary_search(blendshapeNames().begin(), blendshapeNames().end(), name);
}

std::size_t blendshapeIndex(const std::string& name)
{
  const auto& names = blendshapeNames();
  return static_cast<std::size_t>(std::lower_bound(names.begin(), names.end(), name) - names.begin());
}

Blendshapes::Blendshapes()  // NOLINT(*-member-init): all are set below
{
  _scores.fill(std::numeric_limits<float>::quiet_NaN());
}

bool Blendshapes::set(std::string_view name, float score)
{
  const auto& names = blendshapeNames();
  const auto found = std::lower_bound(names.begin(), names.end(), name);
  if (found == names.end() || *found != name)
    return false;
  _scores.at(static_cast<std::size_t>(found - names.begin())) = score;
  return true;
}

bool Blendshapes::areUnknown() const
{
  return std::all_of(_scores.begin(), _scores.end(), [](float score) { return std::isnan(score); });
}

// A heuristic of our own: there is no standard for what blendshapes mean. They are read as the movements of the
// prototypes of EMFACS that come nearest. The cheeks count little and only as one of two, since MediaPipe hardly ever
// moves them.
const ScoreTable& blendshapeTable()
{
  static const ScoreTable table = [] {
    const std::vector<std::string> smile = {"mouthSmileLeft", "mouthSmileRight"};
    ScoreTable shapes;
    shapes.smile = {{{1.f, smile}}, {}};
    shapes.joy = {{{0.7f, smile}, {0.3f, {"cheekSquintLeft", "cheekSquintRight", "eyeSquintLeft", "eyeSquintRight"}}},
                  {}};
    shapes.sorrow = {{{1.f, {"mouthFrownLeft", "mouthFrownRight", "browInnerUp"}}}, {}};
    shapes.anger = {
        {{1.f,
          {"browDownLeft", "browDownRight", "noseSneerLeft", "noseSneerRight", "mouthPressLeft", "mouthPressRight"}}},
        {}};
    shapes.surprise = {
        {{1.f, {"browInnerUp", "browOuterUpLeft", "browOuterUpRight", "eyeWideLeft", "eyeWideRight", "jawOpen"}}}, {}};
    shapes.laughter = {{{1.f, smile}}, {{1.5f, {"jawOpen"}}}};
    return shapes;
  }();
  return table;
}

const std::vector<std::string>& eyeScoreNames()
{
  static const std::vector<std::string> names = {"eyeLookOutLeft",  "eyeLookInLeft",   "eyeLookInRight",
                                                 "eyeLookOutRight", "eyeLookUpLeft",   "eyeLookUpRight",
                                                 "eyeLookDownLeft", "eyeLookDownRight"};
  return names;
}

// The left eye looks out to the own left, the right eye in to the own left.
std::optional<KV::Gaze> eyeGaze(const std::vector<float>& eyeScores, const EyeScale& scale)
{
  const auto score = [&eyeScores](std::size_t i) { return eyeScores.at(i); };
  const float toOwnLeft = ((score(0) - score(1)) + (score(2) - score(3))) / 2.f;
  const float up = ((score(4) + score(5)) - (score(6) + score(7))) / 2.f;
  if (std::isnan(toOwnLeft) || std::isnan(up))
    return {};
  return KV::Gaze(scale.yaw * toOwnLeft, scale.pitch * up);
}

// A head yaw counts to the own right, a gaze yaw to the own left.
KV::Gaze gazeOf(const KV::Gaze& inHead, const std::optional<KV::HeadPosture>& head)
{
  if (!head)
    return inHead;
  return {inHead.yaw - head->yaw(), inHead.pitch + head->pitch()};
}

float blendshapeScore(double score)
{
  return std::clamp(static_cast<float>(score), 0.f, 1.f);
}

}  // namespace KV::recordings
