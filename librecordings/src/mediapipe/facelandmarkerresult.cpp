#include "mediapipe/facelandmarkerresult.hpp"

#include "face/blendshapes.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace KV::recordings
{
namespace
{
using Json = nlohmann::json;

constexpr float unknown = std::numeric_limits<float>::quiet_NaN();
constexpr double greatestNumber = 1e15;
constexpr double latestSecond = 9.2e9;  // that a clock in nanoseconds can show

// A value, and where it stands in the result.
struct Value
{
  const Json* json;
  std::string path;

  [[noreturn]] void refuse(const std::string& expected) const
  {
    throw FaceLandmarkerError(path, "expected " + expected + ", found " + quote(json->dump()));
  }

  // Whichever of these members there is; nothing if there is none, or it is null.
  std::optional<Value> member(std::initializer_list<const char*> names) const
  {
    for (const char* const name : names)
    {
      const auto found = json->find(name);
      if (found != json->end() && !found->is_null())
        return Value{&*found, path.empty() ? name : path + "." + name};
    }
    return {};
  }

  std::size_t size(const std::string& expected) const
  {
    if (!json->is_array())
      refuse(expected);
    return json->size();
  }

  Value element(std::size_t index) const { return {&(*json)[index], path + "[" + std::to_string(index) + "]"}; }

  double number(const std::string& expected) const
  {
    if (!json->is_number() || !(std::abs(json->get<double>()) <= greatestNumber))
      refuse(expected);
    return json->get<double>();
  }
};

Json parsed(const std::string& text)
{
  try
  {
    return Json::parse(text);
  }
  catch (const Json::exception& error)
  {
    // "[json.exception...] what"
    const std::string what = error.what();
    const std::size_t begin = what.find("] ");
    throw FaceLandmarkerError(
        "", "expected a JSON object, but " + what.substr(begin == std::string::npos ? 0 : begin + 2, 200));
  }
}

// Puts the score of one category, {"score": ..., "categoryName": ...}, where it is asked for.
void readCategory(const Value& category, const std::vector<std::string>& blendshapes, std::vector<float>& scores)
{
  if (!category.json->is_object())
    category.refuse("a category, with score and categoryName");
  const auto name = category.member({"categoryName", "category_name"});
  if (!name || !name->json->is_string())
    category.refuse("a category with a text categoryName");
  const auto score = category.member({"score"});
  if (!score)
    category.refuse("a category with a score");
  const float value = blendshapeScore(score->number("a number"));
  for (std::size_t i = 0; i < blendshapes.size(); ++i)
    if (blendshapes[i] == name->json->get_ref<const std::string&>())
      scores[i] = value;
}

// {"categories": [...]}, or the list alone.
std::vector<float> readScores(const Value& value, const std::vector<std::string>& blendshapes)
{
  std::vector<float> scores(blendshapes.size(), unknown);
  const auto inner = value.json->is_object() ? value.member({"categories"}) : std::nullopt;
  const Value categories = inner.value_or(value);
  const std::size_t count = categories.size("a list of categories");
  for (std::size_t i = 0; i < count; ++i)
    readCategory(categories.element(i), blendshapes, scores);
  return scores;
}

const char* const matrixExpected = "a transformation: 4 times 4 numbers, of which the last row is 0, 0, 0, 1";

// {"data": [16 numbers]}, or 16 numbers, or four times four.
FacePose readMatrix(const Value& value)
{
  const auto inner = value.json->is_object() ? value.member({"data"}) : std::nullopt;
  const Value data = inner.value_or(value);
  const std::size_t count = data.size(matrixExpected);
  FaceMatrix matrix{};
  if (count != 16 && count != 4)
    data.refuse(matrixExpected);
  for (std::size_t i = 0; i < matrix.size(); ++i)
  {
    if (count == 16)
    {
      matrix.at(i) = data.element(i).number("a number");
      continue;
    }
    const Value row = data.element(i / 4);
    if (row.size(matrixExpected) != 4)
      row.refuse(matrixExpected);
    matrix.at(i) = row.element(i % 4).number("a number");
  }
  const auto pose = poseOf(matrix);
  if (!pose)
    data.refuse(matrixExpected);
  return *pose;
}

std::size_t sizeOf(const std::optional<Value>& list)
{
  return list ? list->size("a list with an element for each face") : 0;
}

// Lists that were not asked of the analyser are empty.
std::size_t faceCount(const std::vector<std::optional<Value>>& lists)
{
  std::size_t count = 0;
  for (const auto& list : lists)
  {
    const std::size_t size = sizeOf(list);
    if (size > 0 && count > 0 && size != count)
      list->refuse("as many elements as there are faces, " + std::to_string(count));
    count = std::max(count, size);
  }
  return count;
}

std::optional<double> readTimestamp(const Value& result)
{
  const auto milliseconds = result.member({"timestampMs", "timestamp_ms"});
  if (milliseconds)
    return milliseconds->number("milliseconds") / 1000.0;
  const auto seconds = result.member({"timestamp", "time"});
  if (!seconds)
    return {};
  const double value = seconds->number("seconds");
  if (std::abs(value) > latestSecond)
    seconds->refuse("seconds, from the start of the recording or since 1970");
  return value;
}

std::optional<std::int64_t> readFrame(const Value& result)
{
  const auto frame = result.member({"frame"});
  if (!frame)
    return {};
  const double number = frame->number("a whole number");
  if (number != std::floor(number))
    frame->refuse("a whole number");
  return static_cast<std::int64_t>(number);
}

}  // namespace

FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text, const std::vector<std::string>& blendshapes)
{
  const Json json = parsed(text);
  const Value root{&json, {}};
  FaceLandmarkerResult result;
  result.frame = readFrame(root);
  result.timestamp = readTimestamp(root);

  const auto shapes = root.member({"faceBlendshapes", "face_blendshapes"});
  const auto matrices = root.member({"facialTransformationMatrixes", "facial_transformation_matrixes"});
  const auto landmarks = root.member({"faceLandmarks", "face_landmarks"});
  if (!shapes && !matrices && !landmarks)
    throw FaceLandmarkerError("faceBlendshapes",
                              "is missing, and so are facialTransformationMatrixes and "
                              "faceLandmarks: this is no result of a FaceLandmarker");
  const std::size_t count = faceCount({shapes, matrices, landmarks});
  for (std::size_t i = 0; i < count; ++i)
  {
    FaceLandmarkerFace face;
    face.scores = sizeOf(shapes) > 0 ? readScores(shapes->element(i), blendshapes)
                                     : std::vector<float>(blendshapes.size(), unknown);
    if (sizeOf(matrices) > 0)
      face.pose = readMatrix(matrices->element(i));
    result.faces.push_back(std::move(face));
  }
  return result;
}

}  // namespace KV::recordings
