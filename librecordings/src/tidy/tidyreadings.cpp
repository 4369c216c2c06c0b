#include <skeigiot/recordings/tidyreadings.hpp>

#include "input/utf8.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

namespace KV::recordings
{
namespace
{
using Column = TidyColumn;

/// The fields of the row that a table stands on, as readings want them.
class Fields
{
public:
  explicit Fields(const TidyTable& table) : _table(table) {}

  bool has(Column column) const { return _table.has(column); }

  std::string text(Column column) const
  {
    _refuseMissing(column);
    return _table.text(column);
  }

  /// What is exported as JSON has to be UTF-8.
  std::string utf8Text(Column column) const
  {
    std::string word = text(column);
    if (!isUtf8(word))
      _table.refuseValue(column, "text in UTF-8");
    return word;
  }

  float number(Column column) const
  {
    _refuseMissing(column);
    const auto value = static_cast<float>(_table.number(column));
    if (!std::isfinite(value))
      _table.refuseValue(column, "a number");
    return value;
  }

  double seconds(Column column) const
  {
    _refuseMissing(column);
    return _table.seconds(column);
  }

  template <typename Integer>
  Integer whole(Column column, Integer least = std::numeric_limits<Integer>::min()) const
  {
    _refuseMissing(column);
    return static_cast<Integer>(_table.wholeNumber(column, least, std::numeric_limits<Integer>::max()));
  }

  bool truth(Column column) const
  {
    const std::string word = text(column);
    for (const char* const yes : {"true", "True", "TRUE", "1", "1.0"})
      if (word == yes)
        return true;
    for (const char* const no : {"false", "False", "FALSE", "0", "0.0"})
      if (word == no)
        return false;
    _table.refuseValue(column, "true or false");
  }

  /// A reading without a confidence is sure.
  float confidence() const { return has(Column::Confidence) ? number(Column::Confidence) : 1.f; }

  template <typename T>
  KV::ValueConfidence<T> withConfidence(const T& value) const
  {
    return {value, confidence()};
  }

private:
  void _refuseMissing(Column column) const
  {
    if (!has(column))
      _table.refuse(column, "is missing");
  }

  const TidyTable& _table;
};

template <auto Member>
void addTruth(const Fields& fields, Step& step)
{
  (step.observation.*Member).emplace(step.time, fields.truth(Column::Value));
}

template <auto Member>
void addNumber(const Fields& fields, Step& step)
{
  (step.observation.*Member).emplace(step.time, fields.number(Column::Value));
}

template <auto Member, typename Direction>
void addDirection(const Fields& fields, Step& step)
{
  const Direction direction(fields.number(Column::Yaw), fields.number(Column::Pitch));
  (step.observation.*Member).emplace(step.time, direction);
}

/// One of several scores: it joins those that the step has already.
template <auto Member, typename Scores, auto Score>
void addScore(const Fields& fields, Step& step)
{
  const auto score = fields.withConfidence(fields.number(Column::Value));
  auto& scores = step.observation.*Member;
  if (!scores)
    scores.emplace(step.time, Scores());
  scores->value.*Score = score;
}

template <auto Score>
constexpr auto addExpression = addScore<&KV::PersonObservation::expressions, KV::Expressions, Score>;

template <auto Score>
constexpr auto addVoice = addScore<&KV::PersonObservation::voiceEmotion, KV::VoiceEmotion, Score>;

template <int Point>
void addFacialPoint(const Fields& fields, Step& step)
{
  const auto point = fields.withConfidence(std::make_pair(fields.number(Column::X), fields.number(Column::Y)));
  auto& points = step.observation.facialPoints;
  if (!points)
    points.emplace(step.time, KV::FacialPoints());
  points->value.setFacialPoint(static_cast<KV::PointDescription>(Point), point);
}

void addSmile(const Fields& fields, Step& step)
{
  step.observation.smile.emplace(step.time, KV::Smile(fields.number(Column::Value), fields.confidence()));
}

void addHeadPosture(const Fields& fields, Step& step)
{
  const KV::HeadPosture posture(fields.number(Column::Yaw), fields.number(Column::Pitch), fields.number(Column::Roll));
  step.observation.headPosture.emplace(step.time, posture);
}

void addGender(const Fields& fields, Step& step)
{
  step.observation.gender.emplace(step.time, fields.withConfidence(fields.truth(Column::Value)));
}

void addAge(const Fields& fields, Step& step)
{
  step.observation.age.emplace(step.time, fields.withConfidence(fields.whole<unsigned int>(Column::Value)));
}

void addTouch(const Fields& fields, Step& step)
{
  step.observation.touchEmotion.emplace(step.time, fields.whole<std::int32_t>(Column::Value));
}

void addContext(const Fields& fields, Step& step)
{
  const KV::ContextEmotion emotion(fields.whole<std::int32_t>(Column::Valence), fields.number(Column::Lifetime));
  step.observation.contextEmotion.emplace(step.time, emotion);
}

void addSeen(const Fields& fields, Step& step)
{
  step.seen = fields.truth(Column::Value);
}

void addActivity(const Fields& fields, Step& step)
{
  step.ambianceActivity = fields.number(Column::Value);
}

void addMovements(const Fields& fields, Step& step)
{
  step.movements = fields.whole<int>(Column::Value, 0);
}

void addStart(const Fields& fields, Step& step)
{
  ScopeStart start{fields.utf8Text(Column::Value)};
  if (fields.has(Column::Samples))
    start.samples = fields.whole<std::int32_t>(Column::Samples);
  step.scopeStarts.push_back(start);
}

void addStop(const Fields& fields, Step& step)
{
  step.scopeStops.push_back(fields.utf8Text(Column::Value));
}

/// What one reading wants of a row.
struct Reading
{
  using Add = void (*)(const Fields& fields, Step& step);

  std::vector<Column> needed;
  Add add = nullptr;
  bool ofPerson = true;
  std::vector<Column> optional = {};
};

const std::map<std::string, Reading>& readings()
{
  using KV::Expressions;
  using Observation = KV::PersonObservation;
  const std::vector<Column> value = {Column::Value};
  const std::vector<Column> direction = {Column::Yaw, Column::Pitch};
  const std::vector<Column> point = {Column::X, Column::Y};
  static const std::map<std::string, Reading> all = {
      {"seen", {value, addSeen}},
      {"lookingAtRobot", {value, addTruth<&Observation::lookingAtRobot>}},
      {"headHeight", {value, addNumber<&Observation::headHeight>}},
      {"distance", {value, addNumber<&Observation::distance>}},
      {"gaze", {direction, addDirection<&Observation::gaze, KV::Gaze>}},
      {"smile", {value, addSmile}},
      {"expressions.calm", {value, addExpression<&Expressions::calm>}},
      {"expressions.anger", {value, addExpression<&Expressions::anger>}},
      {"expressions.joy", {value, addExpression<&Expressions::joy>}},
      {"expressions.sorrow", {value, addExpression<&Expressions::sorrow>}},
      {"expressions.laughter", {value, addExpression<&Expressions::laughter>}},
      {"expressions.excitement", {value, addExpression<&Expressions::excitement>}},
      {"expressions.surprise", {value, addExpression<&Expressions::surprise>}},
      {"headPosture", {{Column::Yaw, Column::Pitch, Column::Roll}, addHeadPosture}},
      {"gender", {value, addGender}},
      {"age", {value, addAge}},
      {"faceDetected", {value, addTruth<&Observation::faceDetected>}},
      {"facialPoints.0", {point, addFacialPoint<0>}},
      {"facialPoints.1", {point, addFacialPoint<1>}},
      {"facialPoints.2", {point, addFacialPoint<2>}},
      {"facialPoints.3", {point, addFacialPoint<3>}},
      {"facialPoints.4", {point, addFacialPoint<4>}},
      {"facialPoints.5", {point, addFacialPoint<5>}},
      {"facialPoints.6", {point, addFacialPoint<6>}},
      {"facialPoints.7", {point, addFacialPoint<7>}},
      {"facialPoints.8", {point, addFacialPoint<8>}},
      {"facialPoints.9", {point, addFacialPoint<9>}},
      {"facialPoints.10", {point, addFacialPoint<10>}},
      {"facialPoints.11", {point, addFacialPoint<11>}},
      {"voiceEmotion.calm", {value, addVoice<&Expressions::calm>}},
      {"voiceEmotion.anger", {value, addVoice<&Expressions::anger>}},
      {"voiceEmotion.joy", {value, addVoice<&Expressions::joy>}},
      {"voiceEmotion.sorrow", {value, addVoice<&Expressions::sorrow>}},
      {"voiceEmotion.laughter", {value, addVoice<&Expressions::laughter>}},
      {"voiceEmotion.excitement", {value, addVoice<&Expressions::excitement>}},
      {"asrEmotion", {value, addNumber<&Observation::asrEmotion>}},
      {"touchEmotion", {value, addTouch}},
      {"contextEmotion", {{Column::Valence, Column::Lifetime}, addContext}},
      {"speaking", {value, addTruth<&Observation::speaking>}},
      {"robotHeadPosture", {direction, addDirection<&Observation::robotHeadPosture, KV::RobotHeadPosture>}},
      {"ambiance.activity", {value, addActivity, false}},
      {"ambiance.movements", {value, addMovements, false}},
      {"start", {value, addStart, false, {Column::Samples}}},
      {"stop", {value, addStop, false}},
  };
  return all;
}

bool contains(const std::vector<Column>& columns, Column column)
{
  return std::find(columns.begin(), columns.end(), column) != columns.end();
}

// A confidence is refused nowhere: a table of several readings has it in every row.
void refuseWhatTheReadingHasNot(const TidyTable& table, const Reading& reading, const std::string& name)
{
  for (const Column column : {Column::Value, Column::Yaw, Column::Pitch, Column::Roll, Column::Valence,
                              Column::Lifetime, Column::X, Column::Y, Column::Samples})
    if (table.has(column) && !contains(reading.needed, column) && !contains(reading.optional, column))
      table.refuse(column, "there is none of the reading " + name);
}

std::optional<std::int32_t> personOf(const TidyTable& table, bool ofPerson)
{
  if (ofPerson && !table.hasColumn(Column::Person))
    return 0;
  if (ofPerson)
    return Fields(table).whole<std::int32_t>(Column::Person);
  if (table.has(Column::Person))
    table.refuse(Column::Person, "expected nobody, since the row is about the room or a scope");
  return {};
}

}  // namespace

std::optional<TidyReading> tidyReadingNamed(const std::string& name)
{
  const auto found = readings().find(name);
  if (found == readings().end())
    return {};
  return TidyReading{found->second.needed, found->second.optional, found->second.ofPerson};
}

TidyRow readTidyRow(const TidyTable& table)
{
  const Fields fields(table);
  TidyRow row;
  row.moment = table.moment();
  if (!row.moment)
    row.seconds = fields.seconds(Column::Time);
  row.reading = fields.text(Column::Reading);
  const auto reading = readings().find(row.reading);
  if (reading == readings().end())
    table.refuse(Column::Reading, "there is no reading " + quote(row.reading));
  row.person = personOf(table, reading->second.ofPerson);
  return row;
}

bool addTidyReading(const TidyTable& table, const std::string& name, Step& step)
{
  const Reading& reading = readings().at(name);
  refuseWhatTheReadingHasNot(table, reading, name);
  const auto isFilled = [&table](Column column) { return table.has(column); };
  const bool canBeEmpty = reading.ofPerson;
  if (canBeEmpty && std::none_of(reading.needed.begin(), reading.needed.end(), isFilled))
    return false;
  reading.add(Fields(table), step);
  return true;
}

}  // namespace KV::recordings
