#include <skeigiot/recordings/faceadapter.hpp>

#include "face/actionunits.hpp"
#include "face/emotions.hpp"
#include "face/faceadapterprivate.hpp"
#include "face/landmarks.hpp"
#include "face/pose.hpp"

#include <algorithm>

namespace KV::recordings
{
namespace
{
constexpr float fullShare = 1.f;  // a classifier gives shares

}  // namespace

FaceAdapterPrivate::FaceAdapterPrivate(const ReadingOptions& givenOptions, const Mapping& givenMapping)
  : options(givenOptions),
    mapping(givenMapping),
    actionUnits(mapping.actionUnits),
    blendshapes(mapping),
    emotions(mapping.emotions)
{
  for (const std::string& name : actionUnits.names())
    actionUnitNumbers.push_back(actionUnitNumber(name));
  for (const std::string& name : blendshapes.names())
    blendshapeIndices.push_back(blendshapeIndex(name));
  for (const std::string& name : emotions.names())
    emotionScores.push_back(emotionNamed(name));
}

std::vector<float> FaceAdapterPrivate::scoresOf(const ActionUnits& units) const
{
  const float fullScale = units.fullScale.value_or(options.actionUnitFullScale);
  std::vector<float> scores;
  scores.reserve(actionUnitNumbers.size());
  for (const std::size_t number : actionUnitNumbers)
    scores.push_back(actionUnitScore(static_cast<double>(units.intensity.at(number)), fullScale));
  return scores;
}

std::vector<float> FaceAdapterPrivate::scoresOf(const Blendshapes& shapes) const
{
  std::vector<float> scores;
  scores.reserve(blendshapeIndices.size());
  for (const std::size_t index : blendshapeIndices)
    scores.push_back(blendshapeScore(static_cast<double>(shapes.at(index))));
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

FacePose FaceAdapterPrivate::poseOf(const Face& face, const std::vector<float>& blendshapeScores) const
{
  FacePose pose = face.pose;
  if (pose.gaze || blendshapeScores.empty())
    return pose;
  if (const auto eyes = blendshapes.eyes(blendshapeScores))
    pose.gaze = gazeOf(*eyes, pose.headPosture);
  return pose;
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

bool FaceAdapter::isTracked(float confidence) const
{
  return confidence >= _p->options.minimalConfidence;
}

FaceReadings FaceAdapter::read(const Face& face) const
{
  const float confidence = std::min(face.confidence, 1.f);
  FaceReadings readings;
  std::vector<float> blendshapeScores;
  if (face.blendshapes)
  {
    blendshapeScores = _p->scoresOf(*face.blendshapes);
    _p->blendshapes.setExpressions(readings, blendshapeScores, confidence);
  }
  if (face.actionUnits)
  {
    const auto scores = _p->scoresOf(*face.actionUnits);
    readings.smile = _p->actionUnits.smile(scores, confidence);
    readings.expressions = _p->actionUnits.expressions(scores, confidence);
  }
  if (face.emotions)
    readings.expressions = _p->emotions.expressions(_p->scoresOf(*face.emotions), confidence);
  if (face.landmarks)
    readings.facialPoints = facialPointsOf(*face.landmarks, confidence, _p->options.mirrored);
  setPose(readings, _p->poseOf(face, blendshapeScores), _p->options);
  return readings;
}

const std::vector<std::string>& FaceAdapter::actionUnitNames() const
{
  return _p->actionUnits.names();
}

const std::vector<std::string>& FaceAdapter::blendshapeNames() const
{
  return _p->blendshapes.names();
}

const std::vector<std::string>& FaceAdapter::emotionNames() const
{
  return _p->emotions.names();
}

}  // namespace KV::recordings
