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

namespace
{
using Names = std::vector<std::string>;

// Both sides of the face.
Names sides(const std::string& name)
{
  return {name + "Left", name + "Right"};
}

void setRest(ScoreTable& table, const Names& names, const RestingScore& rest)
{
  for (const std::string& name : names)
    table.rest[name] = rest;
}

}  // namespace

// No standard defines the meaning of blendshapes. The weights here were chosen on labelled pictures
// (docs/validation.md):
//
// - mouthSmile rises on bared teeth, in four of ten angry and frightened faces; jaw, lower lip and brows rise with it,
// so they are subtracted. It is nearly 0 or large: so joy is twice that.
// - Anger and disgust lower the brows, narrow the eyes and raise the upper lip.
// - mouthFrown is below 0.06 even in sad faces: alone it cannot show sadness.
// - noseSneer and cheekSquint are always about 0, and are not read.
// - jawOpen alone is not negative: talk opens it.
const ScoreTable& blendshapeTable()
{
  static const ScoreTable table = [] {
    ScoreTable shapes;
    shapes.smile = {{{1.f, sides("mouthSmile")},
                     {-1.f, {"jawOpen"}},
                     {-0.5f, sides("mouthLowerDown")},
                     {-0.75f, sides("browDown")}},
                    {}};
    shapes.joy = {
        {{2.f, sides("mouthSmile")}, {-2.f, {"jawOpen"}}, {-1.f, sides("mouthLowerDown")}, {-1.5f, sides("browDown")}},
        {}};
    shapes.anger = {{{2.f, sides("browDown")},
                     {1.f, sides("eyeSquint")},
                     {2.f, sides("mouthUpperUp")},
                     {1.f, sides("mouthLowerDown")},
                     {-1.f, sides("mouthSmile")}},
                    {}};
    shapes.sorrow = {{{1.f, sides("eyeSquint")},
                      {2.f, sides("mouthStretch")},
                      {2.f, sides("mouthFrown")},
                      {-0.5f, sides("mouthSmile")}},
                     {}};
    shapes.surprise = {
        {{0.25f, {"browInnerUp"}}, {0.25f, sides("browOuterUp")}, {0.25f, sides("eyeWide")}, {0.25f, {"jawOpen"}}}, {}};
    shapes.laughter = {shapes.smile.sum, {{1.5f, {"jawOpen"}}}};
    setRest(shapes, sides("browDown"), {0.1f, 0.5f});
    setRest(shapes, sides("eyeSquint"), {0.3f, 0.5f});
    setRest(shapes, sides("browOuterUp"), {0.2f, 0.5f});
    setRest(shapes, {"browInnerUp"}, {0.15f, 0.5f});
    setRest(shapes, sides("mouthSmile"), {0.f, 0.2f});
    return shapes;
  }();
  return table;
}

// ARKit's shapes have the same names but other values: by MediaPipe's table a talking face is negative most of the
// time. By analogy with action units, since there are no labelled recordings.
const ScoreTable& arkitTable()
{
  static const ScoreTable table = [] {
    ScoreTable shapes;
    shapes.smile = {{{1.f, sides("mouthSmile")}, {-0.5f, sides("browDown")}}, {}};
    shapes.joy = {{{1.5f, sides("mouthSmile")}, {-0.75f, sides("browDown")}}, {}};
    shapes.anger = {{{1.5f, sides("browDown")}, {1.5f, sides("noseSneer")}, {-1.f, sides("mouthSmile")}}, {}};
    shapes.sorrow = {{{2.f, sides("mouthFrown")}, {0.5f, sides("browDown")}, {-1.f, sides("mouthSmile")}}, {}};
    shapes.surprise = {
        {{0.25f, {"browInnerUp"}}, {0.25f, sides("browOuterUp")}, {0.25f, sides("eyeWide")}, {0.25f, {"jawOpen"}}}, {}};
    shapes.laughter = {shapes.smile.sum, {{1.5f, {"jawOpen"}}}};
    setRest(shapes, sides("browDown"), {0.05f, 0.5f});
    setRest(shapes, sides("noseSneer"), {0.1f, 0.5f});
    setRest(shapes, sides("mouthFrown"), {0.15f, 0.5f});
    setRest(shapes, sides("eyeWide"), {0.3f, 0.5f});
    setRest(shapes, sides("browOuterUp"), {0.05f, 0.5f});
    setRest(shapes, {"browInnerUp"}, {0.15f, 0.5f});
    setRest(shapes, sides("mouthSmile"), {0.f, 0.2f});
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

// The left eye turns out to the person's own left, the right eye in to their own left.
std::optional<KV::Gaze> eyeGaze(const std::vector<float>& eyeScores, const EyeScale& scale)
{
  const auto score = [&eyeScores](std::size_t i) { return eyeScores.at(i); };
  const float toOwnLeft = ((score(0) - score(1)) + (score(2) - score(3))) / 2.f;
  const float up = ((score(4) + score(5)) - (score(6) + score(7))) / 2.f;
  if (std::isnan(toOwnLeft) || std::isnan(up))
    return {};
  return KV::Gaze(scale.yaw * toOwnLeft, scale.pitch * up);
}

// A head yaw is positive to the person's own right, a gaze yaw to their own left.
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
