#include "pyfeat/pyfeatcolumns.hpp"

#include "face/actionunits.hpp"
#include "face/emotions.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <algorithm>
#include <map>

namespace KV::recordings
{
namespace
{
const std::vector<std::string> rotationNames = {"Pitch", "Roll", "Yaw"};
const std::vector<std::string> gazeNames = {"gaze_pitch", "gaze_yaw"};

// The present and the old name of each emotion.
const std::map<std::string, std::array<std::string, 2>> emotionColumns = {
    {"neutral", {"Neutral", "neutral"}}, {"happy", {"Happy", "happiness"}},      {"sad", {"Sad", "sadness"}},
    {"fear", {"Fear", "fear"}},          {"surprise", {"Surprise", "surprise"}}, {"disgust", {"Disgust", "disgust"}},
    {"anger", {"Anger", "anger"}}};

std::vector<std::string> nodNames()
{
  std::vector<std::string> names;
  for (const char* const axis : {"x_", "y_"})
    for (const int landmark : nodLandmarks)
      names.push_back(axis + std::to_string(landmark));
  return names;
}

bool isOneOf(const std::vector<std::string>& names, const std::string& name)
{
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool isEmotion(const std::string& name)
{
  return std::any_of(emotionColumns.begin(), emotionColumns.end(), [&name](const auto& emotion) {
    return emotion.second.front() == name || emotion.second.back() == name;
  });
}

// Only py-feat uses these names.
const std::vector<std::string> faceNames = {"FaceScore", "FaceRectX", "FaceRectY", "FaceRectWidth", "FaceRectHeight"};

bool isScore(const std::string& name)
{
  return isActionUnitName(name) || isEmotion(name);
}

// With this many bare names of action units and emotions, the file is from py-feat.
constexpr std::ptrdiff_t enoughScores = 3;

bool hasAny(const std::vector<std::optional<std::size_t>>& columns)
{
  return std::any_of(columns.begin(), columns.end(), [](const auto& column) { return column.has_value(); });
}

std::optional<std::size_t> findEmotion(const CsvHeader& header, const std::string& emotion)
{
  const auto& [now, before] = emotionColumns.at(emotion);
  const auto column = header.find(now);
  return column ? column : header.find(before);
}

}  // namespace

bool PyFeatColumns::hasActionUnits() const
{
  return hasAny(actionUnits);
}

bool PyFeatColumns::hasEmotions() const
{
  return hasAny(emotions);
}

bool looksLikePyFeat(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  const auto isOfFace = [](const std::string& name) { return isOneOf(faceNames, name); };
  return std::any_of(names.begin(), names.end(), isOfFace) ||
         std::count_if(names.begin(), names.end(), isScore) >= enoughScores;
}

bool isOfPyFeat(const std::string& name)
{
  return isOneOf(faceNames, name) || isScore(name) || isOneOf(rotationNames, name) || isOneOf(gazeNames, name) ||
         isOneOf({"frame", "approx_time", "Identity"}, name);
}

PyFeatColumns findPyFeatColumns(const CsvHeader& header, const std::vector<std::string>& actionUnits,
                                const std::vector<std::string>& emotions)
{
  PyFeatColumns columns;
  columns.frame = header.find("frame");
  columns.approximateTime = header.find("approx_time");
  columns.identity = header.find("Identity");
  columns.faceScore = header.find("FaceScore");
  columns.rotation = header.findAll<3>(rotationNames);
  columns.gaze = header.findAll<2>(gazeNames);
  columns.actionUnits = header.find(actionUnits);
  for (const std::string& emotion : emotions)
    columns.emotions.push_back(findEmotion(header, emotion));
  columns.landmarks = findLandmarks(header);
  columns.nod = header.findAll<2 * nodLandmarks.size()>(nodNames());

  if (!columns.rotation && !columns.gaze && !columns.hasActionUnits() && !columns.hasEmotions())
    throw Error(header.place(),
                "there is nothing to read; expected head pose (Pitch, Roll, Yaw), gaze (gaze_pitch, "
                "gaze_yaw), action units (such as AU06, AU12) or emotions (such as Happy or happiness)");
  return columns;
}

}  // namespace KV::recordings
