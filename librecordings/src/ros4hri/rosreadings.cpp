#include <skeigiot/recordings/rosreadings.hpp>

#include "face/actionunits.hpp"
#include "face/landmarks.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace KV::recordings
{
namespace
{
using Score = KV::ValueConfidence<float> KV::Expressions::*;

// The expressions of hri_msgs that the library knows. The valence of other expressions is read.
const std::array<std::pair<const char*, Score>, 7> knownExpressions{{
    {"neutral", &KV::Expressions::calm},
    {"angry", &KV::Expressions::anger},
    {"sad", &KV::Expressions::sorrow},
    {"happy", &KV::Expressions::joy},
    {"surprised", &KV::Expressions::surprise},
    {"amazed", &KV::Expressions::surprise},
    {"excited", &KV::Expressions::excitement},
}};

KV::Expressions allWith(float confidence)
{
  KV::Expressions expressions;
  for (const Score score :
       {&KV::Expressions::calm, &KV::Expressions::anger, &KV::Expressions::joy, &KV::Expressions::sorrow,
        &KV::Expressions::laughter, &KV::Expressions::excitement, &KV::Expressions::surprise})
    expressions.*score = {0.f, confidence};
  return expressions;
}

// A valence does not contain surprise, excitement or laughter, which are independent of it.
KV::Expressions expressionsOfValence(float valence, float confidence)
{
  KV::Expressions expressions;
  expressions.joy = {std::max(valence, 0.f), confidence};
  expressions.sorrow = {std::max(-valence, 0.f), confidence};
  expressions.calm = {1.f - std::abs(valence), confidence};
  return expressions;
}

std::optional<KV::Expressions> expressionsOf(const RosExpression& expression)
{
  const auto* const known =
      std::find_if(knownExpressions.begin(), knownExpressions.end(),
                   [&expression](const auto& entry) { return entry.first == expression.expression; });
  if (known != knownExpressions.end())
  {
    KV::Expressions expressions = allWith(expression.confidence);
    (expressions.*known->second).value = 1.f;
    return expressions;
  }
  const float valence = std::clamp(expression.valence, -1.f, 1.f);
  if (std::isnan(valence) || valence == 0.f)
    return {};
  return expressionsOfValence(valence, expression.confidence);
}

KV::FacialPoints facialPointsOf(const RosLandmarks& landmarks)
{
  KV::FacialPoints points;
  for (std::size_t i = 0; i < facialPointLandmarks.size(); ++i)
  {
    const RosLandmarks::Point& point = landmarks.points.at(static_cast<std::size_t>(facialPointLandmarks.at(i)));
    points.setFacialPoint(static_cast<KV::PointDescription>(i), {{point.x * static_cast<float>(landmarks.width),
                                                                  point.y * static_cast<float>(landmarks.height)},
                                                                 point.confidence});
  }
  return points;
}

Face faceOf(const RosActionUnits& units, const FaceAdapter& adapter)
{
  Face face;
  face.frontEnd = FrontEnd::Ros4Hri;
  face.actionUnits.emplace();
  face.confidence = 0.f;
  int known = 0;
  for (const std::string& name : adapter.actionUnitNames())
  {
    const std::size_t number = actionUnitNumber(name);
    if (number >= RosActionUnits::count || !(units.confidence.at(number) > 0.f))
      continue;
    face.actionUnits->intensity.at(number) = units.intensity.at(number);
    face.confidence += units.confidence.at(number);
    ++known;
  }
  if (known > 0)
    face.confidence /= static_cast<float>(known);
  return face;
}

}  // namespace

FaceReadings readingsOf(const RosExpression& expression)
{
  FaceReadings readings;
  readings.expressions = expressionsOf(expression);
  return readings;
}

FaceReadings readingsOf(const RosActionUnits& units, const FaceAdapter& adapter)
{
  return adapter.read(faceOf(units, adapter));
}

FaceReadings readingsOf(const RosActionUnits& units, const FaceAdapter& adapter, ko::SystemClock::time_point time,
                        RestingFace& rest)
{
  return adapter.read(faceOf(units, adapter), time, rest);
}

FaceReadings readingsOf(const RosLandmarks& landmarks)
{
  FaceReadings readings;
  readings.facialPoints = facialPointsOf(landmarks);
  return readings;
}

}  // namespace KV::recordings
