#include "mediapipe/facelandmarkerresult.hpp"

#include "input/jsondocument.hpp"
#include "mediapipe/facetransformation.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>

namespace KV::recordings
{
namespace
{
using Json = nlohmann::json;

constexpr double greatestNumber = 1e15;
constexpr double latestSecond = 9.2e9;  // that a clock in nanoseconds can show

using Document = JsonDocument<Json>;
using Value = JsonValue<Json>;

// The one of these members that exists; nothing if no member exists, or it is null.
std::optional<Value> memberOf(const Value& object, std::initializer_list<const char*> names)
{
  for (const char* const name : names)
  {
    const auto found = object->find(name);
    if (found != object->end() && !found->is_null())
      return Value(object, name, *found);
  }
  return {};
}

std::size_t sizeOf(const Value& array, const std::string& expected)
{
  if (!array->is_array())
    array.refuse(expected);
  return array->size();
}

double numberOf(const Value& value, const std::string& expected)
{
  if (!value->is_number() || !(std::abs(value->get<double>()) <= greatestNumber))
    value.refuse(expected);
  return value->get<double>();
}

Document parsed(const std::string& text)
{
  refuseNul(text);
  try
  {
    return Document(text);
  }
  catch (const Json::exception& error)
  {
    throw JsonError("", "expected a JSON object, but " + withoutErrorCode(error.what()).substr(0, 200));
  }
}

// Sets the score of one category, {"score": ..., "categoryName": ...}.
void readCategory(const Value& category, Blendshapes& scores)
{
  if (!category->is_object())
    category.refuse("a category, with score and categoryName");
  const auto name = memberOf(category, {"categoryName", "category_name"});
  if (!name || !(*name)->is_string())
    category.refuse("a category with a text categoryName");
  const auto score = memberOf(category, {"score"});
  if (!score)
    category.refuse("a category with a score");
  const auto value = static_cast<float>(numberOf(*score, "a number"));
  scores.set((*name)->get_ref<const std::string&>(), value);
}

// {"categories": [...]}, or the list alone.
Blendshapes readScores(const Value& value)
{
  Blendshapes scores;
  const auto inner = value->is_object() ? memberOf(value, {"categories"}) : std::nullopt;
  const Value categories = inner.value_or(value);
  const std::size_t count = sizeOf(categories, "a list of categories");
  for (std::size_t i = 0; i < count; ++i)
    readCategory(categories.element(i), scores);
  return scores;
}

const char* const matrixExpected = "a transformation: 4 times 4 numbers, of which the last row is 0, 0, 0, 1";

// {"data": [16 numbers]}, or 16 numbers, or four times four.
FaceMatrix readMatrix(const Value& value)
{
  const auto inner = value->is_object() ? memberOf(value, {"data"}) : std::nullopt;
  const Value data = inner.value_or(value);
  const std::size_t count = sizeOf(data, matrixExpected);
  FaceMatrix matrix{};
  if (count != 16 && count != 4)
    data.refuse(matrixExpected);
  for (std::size_t i = 0; i < matrix.size(); ++i)
  {
    if (count == 16)
    {
      matrix.at(i) = numberOf(data.element(i), "a number");
      continue;
    }
    const Value row = data.element(i / 4);
    if (sizeOf(row, matrixExpected) != 4)
      row.refuse(matrixExpected);
    matrix.at(i) = numberOf(row.element(i % 4), "a number");
  }
  if (!poseOf(matrix))
    data.refuse(matrixExpected);
  return matrix;
}

std::size_t sizeOf(const std::optional<Value>& list)
{
  return list ? sizeOf(*list, "a list with an element for each face") : 0;
}

// The analyser leaves lists empty that were not requested.
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
  const auto milliseconds = memberOf(result, {"timestampMs", "timestamp_ms"});
  if (milliseconds)
  {
    const double value = numberOf(*milliseconds, "milliseconds") / 1000.0;
    if (std::abs(value) > latestSecond)
      milliseconds->refuse("milliseconds, from the start of the recording or since 1970");
    return value;
  }
  const auto seconds = memberOf(result, {"timestamp", "time"});
  if (!seconds)
    return {};
  const double value = numberOf(*seconds, "seconds");
  if (std::abs(value) > latestSecond)
    seconds->refuse("seconds, from the start of the recording or since 1970");
  return value;
}

std::optional<std::int64_t> readFrame(const Value& result)
{
  const auto frame = memberOf(result, {"frame"});
  if (!frame)
    return {};
  const double number = numberOf(*frame, "a whole number");
  if (number != std::floor(number))
    frame->refuse("a whole number");
  return static_cast<std::int64_t>(number);
}

}  // namespace

FaceLandmarkerResult readFaceLandmarkerResult(const std::string& text)
{
  const Document json = parsed(text);
  const Value root(json.root());
  FaceLandmarkerResult result;
  result.frame = readFrame(root);
  result.timestamp = readTimestamp(root);

  const auto shapes = memberOf(root, {"faceBlendshapes", "face_blendshapes"});
  const auto matrices = memberOf(root, {"facialTransformationMatrixes", "facial_transformation_matrixes"});
  const auto landmarks = memberOf(root, {"faceLandmarks", "face_landmarks"});
  if (!shapes && !matrices && !landmarks)
    throw JsonError("faceBlendshapes",
                    "is missing, and so are facialTransformationMatrixes and "
                    "faceLandmarks: this is no result of a FaceLandmarker");
  const std::size_t count = faceCount({shapes, matrices, landmarks});
  for (std::size_t i = 0; i < count; ++i)
  {
    MediaPipeFace face;
    if (sizeOf(shapes) > 0)
      face.blendshapes = readScores(shapes->element(i));
    if (sizeOf(matrices) > 0)
      face.matrix = readMatrix(matrices->element(i));
    result.faces.push_back(face);
  }
  return result;
}

}  // namespace KV::recordings
