#include "camera/frame.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/mediapipeface.hpp>
#include <skeigiot/recordings/observationjson.hpp>

#include <nlohmann/json.hpp>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace KV::tools
{

namespace
{

using Json = nlohmann::json;
using recordings::MemberError;

constexpr double degreesPerRadian = 57.295779513082320877;
constexpr double largestNumber = 1e6;    // in a matrix, and of points
constexpr double longestVideo = 1e7;     // [s]
constexpr double greatestAge = 10.;      // [s]
constexpr std::size_t longestName = 64;  // of a page
constexpr std::size_t mostTracks = 64;   // that are lost or left
constexpr std::size_t matrixSize = 16;

/// A value of the JSON, and where it is.
struct Value
{
  const Json& json;
  std::string path;

  [[noreturn]] void refuse(const std::string& expected) const { throw MemberError(path, "expected " + expected); }

  Value element(std::size_t i) const { return {json.at(i), path + "[" + std::to_string(i) + "]"}; }

  double number(double least, double most) const
  {
    const double value = json.is_number() ? json.get<double>() : std::numeric_limits<double>::quiet_NaN();
    if (!(value >= least && value <= most))
      refuse("a number from " + recordings::shortNumber(static_cast<float>(least)) + " to " +
             recordings::shortNumber(static_cast<float>(most)));
    return value;
  }

  float share() const { return static_cast<float>(number(0., 1.)); }

  std::int32_t track() const
  {
    if (!json.is_number_unsigned() || json.get<std::uint64_t>() > std::numeric_limits<std::int32_t>::max())
      refuse("the number of a track");
    return json.get<std::int32_t>();
  }

  std::size_t size(std::size_t most, const std::string& of) const
  {
    if (!json.is_array() || json.size() > most)
      refuse("a list of " + std::to_string(most) + " " + of + " at most");
    return json.size();
  }
};

using Members = std::map<std::string_view, std::function<void(const Value&)>>;

void readObject(const Value& object, const Members& members)
{
  if (!object.json.is_object())
    object.refuse("an object");
  for (const auto& [name, value] : object.json.items())
  {
    const std::string path = object.path.empty() ? name : object.path + "." + name;
    const auto member = members.find(name);
    if (member == members.end())
      throw MemberError(path, "is unknown");
    member->second({value, path});
  }
}

void readMatrix(const Value& value, recordings::Face& face)
{
  if (value.size(matrixSize, "numbers") != matrixSize)
    value.refuse("16 numbers");
  recordings::MediaPipeFace detected;
  detected.matrix.emplace();
  for (std::size_t i = 0; i < matrixSize; ++i)
    detected.matrix->at(i) = value.element(i).number(-largestNumber, largestNumber);
  try
  {
    face.pose = faceOf(detected).pose;
  }
  catch (const std::invalid_argument& error)
  {
    throw MemberError(value.path, error.what());
  }
}

/// Reads the direction of the eyes: x to the right in the picture, y up, z to the camera.
KV::Gaze readGaze(const Value& value)
{
  if (value.size(3, "numbers") != 3)
    value.refuse("3 numbers");
  std::array<double, 3> direction{};
  for (std::size_t i = 0; i < direction.size(); ++i)
    direction.at(i) = value.element(i).number(-1., 1.);
  const auto [x, y, z] = direction;
  if (x == 0. && y == 0. && z == 0.)
    value.refuse("a direction");
  return {static_cast<float>(std::atan2(x, z) * degreesPerRadian),
          static_cast<float>(std::atan2(y, std::hypot(x, z)) * degreesPerRadian)};
}

recordings::FaceLandmarks readPoints(const Value& value)
{
  if (!value.json.is_object())
    value.refuse("an object of points by the numbers of their landmarks");
  recordings::FaceLandmarks landmarks;
  for (const auto& [name, json] : value.json.items())
  {
    const Value point{json, value.path + "." + name};
    std::size_t number = landmarks.points.size();
    const auto [rest, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || rest != name.data() + name.size() || number >= landmarks.points.size())
      throw MemberError(point.path, "is not the number of a landmark, which is 0 to 67");
    if (point.size(2, "numbers") != 2)
      point.refuse("2 numbers");
    landmarks.points.at(number) = {static_cast<float>(point.element(0).number(-largestNumber, largestNumber)),
                                   static_cast<float>(point.element(1).number(-largestNumber, largestNumber))};
  }
  return landmarks;
}

recordings::Blendshapes readBlendshapes(const Value& value)
{
  if (!value.json.is_object())
    value.refuse("an object of scores by the names of their blendshapes");
  recordings::Blendshapes shapes;
  for (const auto& [name, json] : value.json.items())
    if (const Value score{json, value.path + "." + name}; !shapes.set(name, score.share()))
      throw MemberError(score.path, "is not the name of a blendshape");
  return shapes;
}

recordings::EmotionScores readEmotions(const Value& value)
{
  recordings::EmotionScores scores;
  const auto into = [](float& score) { return [&score](const Value& share) { score = share.share(); }; };
  readObject(value, {{"neutral", into(scores.neutral)},
                     {"happy", into(scores.happy)},
                     {"sad", into(scores.sad)},
                     {"surprise", into(scores.surprise)},
                     {"fear", into(scores.fear)},
                     {"disgust", into(scores.disgust)},
                     {"anger", into(scores.anger)}});
  return scores;
}

KV::ValueConfidence<float> readSmile(const Value& value)
{
  if (value.size(2, "numbers") != 2)
    value.refuse("a smile and its confidence");
  return {value.element(0).share(), value.element(1).share()};
}

FoundFace readFace(const Value& value)
{
  FoundFace found;
  found.face.frontEnd = recordings::FrontEnd::MediaPipe;
  std::optional<KV::Gaze> gaze;
  bool hasTrack = false;
  readObject(value, {{"track",
                      [&](const Value& track) {
                        found.track = track.track();
                        hasTrack = true;
                      }},
                     {"matrix", [&](const Value& matrix) { readMatrix(matrix, found.face); }},
                     {"gaze", [&](const Value& direction) { gaze = readGaze(direction); }},
                     {"points", [&](const Value& points) { found.face.landmarks = readPoints(points); }},
                     {"blendshapes", [&](const Value& shapes) { found.face.blendshapes = readBlendshapes(shapes); }},
                     {"blendshapeConfidence", [&](const Value& share) { found.blendshapeConfidence = share.share(); }},
                     {"smile", [&](const Value& smile) { found.smile = readSmile(smile); }},
                     {"emotions", [&](const Value& emotions) { found.emotions = readEmotions(emotions); }},
                     {"emotionConfidence", [&](const Value& share) { found.emotionConfidence = share.share(); }}});
  if (!hasTrack)
    throw MemberError(value.path + ".track", "is missing");
  found.face.pose.gaze = gaze;
  return found;
}

std::vector<std::int32_t> readTracks(const Value& value)
{
  std::vector<std::int32_t> tracks(value.size(mostTracks, "tracks"));
  for (std::size_t i = 0; i < tracks.size(); ++i)
    tracks[i] = value.element(i).track();
  return tracks;
}

void refuseDoubled(const Frame& frame)
{
  std::set<std::int32_t> tracks;
  const auto add = [&tracks](const std::string& member, std::int32_t track) {
    if (!tracks.insert(track).second)
      throw MemberError(member, "has the track " + std::to_string(track) + " twice");
  };
  for (const FoundFace& found : frame.faces)
    add("faces", found.track);
  for (const std::int32_t track : frame.lost)
    add("lost", track);
  for (const std::int32_t track : frame.left)
    add("left", track);
}

}  // namespace

Frame readFrame(const std::string& text)
{
  const Json json = Json::parse(text, nullptr, false);
  if (!json.is_object())
    throw MemberError("", "expected a JSON object");
  Frame frame;
  readObject({json, ""}, {{"page",
                           [&](const Value& page) {
                             if (!page.json.is_string() || page.json.get_ref<const std::string&>().empty() ||
                                 page.json.get_ref<const std::string&>().size() > longestName)
                               page.refuse("a text of 1 to " + std::to_string(longestName) + " bytes");
                             frame.page = page.json.get<std::string>();
                           }},
                          {"age", [&](const Value& age) { frame.age = age.number(0., greatestAge); }},
                          {"time", [&](const Value& time) { frame.time = time.number(0., longestVideo); }},
                          {"faces",
                           [&](const Value& faces) {
                             const std::size_t count = faces.size(mostFaces, "faces");
                             for (std::size_t i = 0; i < count; ++i)
                               frame.faces.push_back(readFace(faces.element(i)));
                           }},
                          {"lost", [&](const Value& tracks) { frame.lost = readTracks(tracks); }},
                          {"left", [&](const Value& tracks) { frame.left = readTracks(tracks); }},
                          {"ended", [&](const Value& ended) {
                             if (!ended.json.is_boolean())
                               ended.refuse("true or false");
                             frame.ended = ended.json.get<bool>();
                           }}});
  if (frame.page.empty())
    throw MemberError("page", "is missing");
  refuseDoubled(frame);
  return frame;
}

}  // namespace KV::tools
