#include <skeigiot/recordings/faceadapter.hpp>

#include "face/actionunits.hpp"
#include "face/emotions.hpp"
#include "face/faceadapterprivate.hpp"
#include "face/landmarks.hpp"
#include "face/pose.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr float fullShare = 1.f;  // a classifier gives shares

// How fast the direction of the head at rest moves, and its greatest angle.
struct HeadLimits
{
  float degreesPerSecond;
  float furthest;  // [deg]
};
constexpr HeadLimits refinement{1.f, 5.f};
constexpr HeadLimits anywhere{6.f, 180.f};

void addMissing(std::vector<std::string>& names, const std::vector<std::string>& others)
{
  for (const std::string& name : others)
    if (std::find(names.begin(), names.end(), name) == names.end())
      names.push_back(name);
}

float movedTowards(float rest, float angle, float step, float furthest)
{
  return std::isnan(angle) ? rest : std::clamp(rest + std::clamp(angle - rest, -step, step), -furthest, furthest);
}

}  // namespace

FaceAdapterPrivate::UnitTable::UnitTable(const ScoreTable& table) : readings(table)
{
  for (const std::string& name : readings.names())
    numbers.push_back(actionUnitNumber(name));
}

FaceAdapterPrivate::ShapeTable::ShapeTable(const ScoreTable& table, const EyeScale& eyes) : readings(table, eyes)
{
  for (const std::string& name : readings.names())
    indices.push_back(blendshapeIndex(name));
}

FaceAdapterPrivate::FaceAdapterPrivate(const ReadingOptions& givenOptions, const Mapping& givenMapping)
  : options(givenOptions),
    mapping(givenMapping),
    units(mapping.actionUnits),
    pyFeatUnits(mapping.pyFeatActionUnits),
    shapes(mapping.blendshapes, mapping.eyes),
    arkitShapes(mapping.arkit, mapping.eyes),
    emotions(mapping.emotions)
{
  addMissing(actionUnitNames, units.readings.names());
  addMissing(actionUnitNames, pyFeatUnits.readings.names());
  for (const std::string& name : actionUnitNames)
    actionUnitNumbers.push_back(actionUnitNumber(name));
  addMissing(blendshapeNames, shapes.readings.names());
  addMissing(blendshapeNames, arkitShapes.readings.names());
  for (const std::string& name : blendshapeNames)
    blendshapeIndices.push_back(blendshapeIndex(name));
  for (const std::string& name : emotions.names())
    emotionScores.push_back(emotionNamed(name));
}

const FaceAdapterPrivate::UnitTable& FaceAdapterPrivate::unitsOf(const Face& face) const
{
  return face.frontEnd == FrontEnd::PyFeat ? pyFeatUnits : units;
}

const FaceAdapterPrivate::ShapeTable& FaceAdapterPrivate::shapesOf(const Face& face) const
{
  return face.frontEnd == FrontEnd::LiveLink ? arkitShapes : shapes;
}

std::vector<float> FaceAdapterPrivate::scoresOf(const ActionUnits& detected, const UnitTable& table) const
{
  const float fullScale = detected.fullScale.value_or(options.actionUnitFullScale);
  std::vector<float> scores;
  scores.reserve(table.numbers.size());
  for (const std::size_t number : table.numbers)
    scores.push_back(actionUnitScore(static_cast<double>(detected.intensity.at(number)), fullScale));
  return scores;
}

std::vector<float> FaceAdapterPrivate::scoresOf(const Blendshapes& detected, const ShapeTable& table)
{
  std::vector<float> scores;
  scores.reserve(table.indices.size());
  for (const std::size_t index : table.indices)
    scores.push_back(blendshapeScore(static_cast<double>(detected.at(index))));
  return scores;
}

std::vector<float> FaceAdapterPrivate::scoresOf(const EmotionScores& shares) const
{
  std::vector<float> scores;
  scores.reserve(emotionScores.size());
  for (const auto score : emotionScores)
    scores.push_back(actionUnitScore(static_cast<double>(shares.*score), fullShare));
  return scores;
}

void FaceAdapterPrivate::subtractRest(std::vector<float>& scores, const ScoreReadings& table, float scale,
                                      boost::optional<RestingFace::Scores> RestingFace::*learned,
                                      const boost::optional<Learning>& learning) const
{
  if (options.rest.kind == Rest::Kind::None)
    return;
  const auto typical = [scale](const RestingScore& score) { return std::min(score.typical * scale, 1.f); };
  if (!learning)
  {
    for (std::size_t i = 0; i < scores.size(); ++i)
      scores[i] = aboveRest(scores[i], typical(table.rest()[i]));
    return;
  }
  boost::optional<RestingFace::Scores>& own = learning->rest.*learned;
  if (!own)
  {
    RestingFace::Scores begun;
    begun.names = table.names();
    for (const RestingScore& score : table.rest())
    {
      begun.limits.push_back({typical(score), std::min(score.most * scale, 1.f)});
      begun.rest.push_back(begun.limits.back().typical);
    }
    own = std::move(begun);  // complete, or not there at all if memory runs out
  }
  own->takeOff(scores, learning->now, options.rest, learning->rest._start);
}

FacePose FaceAdapterPrivate::poseOf(const Face& face, const ShapeTable& table,
                                    const std::vector<float>& blendshapeScores)
{
  FacePose pose = face.pose;
  if (pose.gaze || blendshapeScores.empty())
    return pose;
  if (const auto eyes = table.readings.eyes(blendshapeScores))
    pose.gaze = gazeOf(*eyes, pose.headPosture);
  return pose;
}

void FaceAdapterPrivate::subtractRest(FaceReadings& readings, const Face& face, const Learning& learning) const
{
  const bool refines = refinesAxis(options, face.frontEnd);
  if ((options.lookAt.kind != LookAt::Kind::Learned && !refines) || !readings.headPosture)
    return;
  const HeadLimits limits = refines ? refinement : anywhere;
  RestingFace::Head& head = learning.rest._head;
  if (!head.clock.last && !refines)
  {
    head.yaw = readings.headPosture->yaw();
    head.pitch = readings.headPosture->pitch();
  }
  const float seconds = head.clock.advance(learning.now);
  const float step = limits.degreesPerSecond * seconds;
  head.yaw = movedTowards(head.yaw, readings.headPosture->yaw(), step, limits.furthest);
  head.pitch = movedTowards(head.pitch, readings.headPosture->pitch(), step, limits.furthest);

  readings.headPosture = KV::HeadPosture(readings.headPosture->yaw() - head.yaw,
                                         readings.headPosture->pitch() - head.pitch, readings.headPosture->roll());
  if (readings.gaze)  // its yaw has the other sign
    readings.gaze = KV::Gaze(readings.gaze->yaw + head.yaw, readings.gaze->pitch - head.pitch);
}

FaceReadings FaceAdapterPrivate::read(const Face& face, const boost::optional<Learning>& learning) const
{
  const float confidence = std::min(face.confidence, 1.f);
  const ShapeTable& shapeTable = shapesOf(face);
  FaceReadings readings;
  std::vector<float> blendshapeScores;
  if (face.blendshapes)
  {
    blendshapeScores = scoresOf(*face.blendshapes, shapeTable);
    const ScoreReadings& table = shapeTable.readings.table();
    std::vector<float> scores(blendshapeScores.begin(),
                              blendshapeScores.begin() + static_cast<std::ptrdiff_t>(table.names().size()));
    subtractRest(scores, table, 1.f, &RestingFace::_blendshapes, learning);
    readings.smile = table.smile(scores, confidence);
    readings.expressions = table.expressions(scores, confidence);
  }
  if (face.actionUnits)
  {
    const UnitTable& table = unitsOf(face);
    auto scores = scoresOf(*face.actionUnits, table);
    const float scale = face.frontEnd == FrontEnd::PyFeat
                            ? 1.f
                            : restingFullScale / face.actionUnits->fullScale.value_or(options.actionUnitFullScale);
    subtractRest(scores, table.readings, scale, &RestingFace::_actionUnits, learning);
    readings.smile = table.readings.smile(scores, confidence);
    readings.expressions = table.readings.expressions(scores, confidence);
  }
  if (face.emotions)
  {
    const auto scores = scoresOf(*face.emotions);
    if (const auto smile = emotions.smile(scores, confidence))
      readings.smile = smile;
    readings.expressions = emotions.expressions(scores, confidence);
  }
  if (face.landmarks)
    readings.facialPoints = facialPointsOf(*face.landmarks, confidence, options.mirrored);
  setPose(readings, poseOf(face, shapeTable, blendshapeScores), options, face.frontEnd);
  if (learning)
    subtractRest(readings, face, *learning);
  return readings;
}

FaceAdapter::FaceAdapter(const ReadingOptions& options)
  : _p(std::make_shared<FaceAdapterPrivate>(options, readMapping(options.mapping)))
{}

boost::optional<KV::PersonObservation> FaceAdapter::observe(const Face& face, ko::SystemClock::time_point time) const
{
  if (!isTracked(face.confidence))
    return {};
  return read(face).observedAt(time);
}

boost::optional<KV::PersonObservation> FaceAdapter::observe(const Face& face, ko::SystemClock::time_point time,
                                                            RestingFace& rest) const
{
  if (!isTracked(face.confidence))
    return {};
  return read(face, time, rest).observedAt(time);
}

bool FaceAdapter::isTracked(float confidence) const
{
  return confidence >= _p->options.minimalConfidence;
}

FaceReadings FaceAdapter::read(const Face& face) const
{
  return _p->read(face, {});
}

FaceReadings FaceAdapter::read(const Face& face, ko::SystemClock::time_point time, RestingFace& rest) const
{
  return _p->read(face, FaceAdapterPrivate::Learning{rest, time});
}

const std::vector<std::string>& FaceAdapter::actionUnitNames() const
{
  return _p->actionUnitNames;
}

const std::vector<std::string>& FaceAdapter::blendshapeNames() const
{
  return _p->blendshapeNames;
}

const std::vector<std::string>& FaceAdapter::emotionNames() const
{
  return _p->emotions.names();
}

}  // namespace KV::recordings
