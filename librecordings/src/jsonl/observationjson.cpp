#include <skeigiot/recordings/observationjson.hpp>

#include "input/jsondocument.hpp"
#include "jsonl/flatjson.hpp"
#include "jsonl/observationjsontree.hpp"

#include <skeigiot/readings.hpp>
#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <boost/chrono/duration.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
// Numbers with a fraction are single precision from text to text: converted by double, some would be rounded twice.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;
using Document = JsonDocument<Json>;

using TimePoint = ko::SystemClock::time_point;

constexpr int deepestNesting = limits::deepestJson;
constexpr std::size_t mostParts = limits::mostPartsOfStep;

// The form of every record, for reading and writing alike: a Visitor has
//   required(name, field)           a member that is always there
//   optional(name, field, isVoid)   a member that is left out if `isVoid`

struct Ambiance
{
  int movements = 0;
  boost::optional<float> activity;
};

// A score that was not measured has confidence 0.
bool isDefault(const KV::ValueConfidence<float>& score)
{
  return score.value == 0.f && !std::signbit(score.value) && score.confidence == 0.f && !std::signbit(score.confidence);
}

// The parts of a value. Scores may be left out.
template <typename Visitor, typename Value>
void visit(Visitor& members, Value& value)
{
  forEachPart<Value>([&](const auto& known) {
    auto part = known.in(value);
    if constexpr (std::is_base_of_v<KV::Expressions, Value>)
      members.optional(known.name, part, isDefault(part));
    else
      members.required(known.name, part);
    known.put(part, value);
  });
}

template <typename Visitor>
void visit(Visitor& members, KV::FacialPoints& facialPoints)
{
  constexpr std::size_t count = 12;
  std::array<std::array<float, 3>, count> points{};
  const auto description = [](std::size_t i) { return static_cast<KV::PointDescription>(i); };
  for (std::size_t i = 0; i < count; ++i)
  {
    const auto point = facialPoints.facialPoint(description(i));
    points.at(i) = {point.value.first, point.value.second, point.confidence};
  }
  members.required("points", points);
  for (std::size_t i = 0; i < count; ++i)
  {
    const auto& [x, y, confidence] = points.at(i);
    facialPoints.setFacialPoint(description(i), {{x, y}, confidence});
  }
}

template <typename Visitor>
void visit(Visitor& members, KV::PersonObservation& observation)
{
  forEachReading([&](const auto& known) {
    auto& reading = known.in(observation);
    members.optional(known.name, reading, !reading);
  });
}

template <typename Visitor>
void visit(Visitor& members, Ambiance& ambiance)
{
  members.optional("activity", ambiance.activity, !ambiance.activity);
  members.optional("movements", ambiance.movements, ambiance.movements == 0);
}

template <typename Visitor>
void visit(Visitor& members, ScopeStart& start)
{
  members.required("scope", start.name);
  members.optional("samples", start.samples, start.samples == ScopeStart().samples);
}

bool isEmpty(const KV::PersonObservation& observation)
{
  bool isAnyThere = false;
  forEachReading([&](const auto& known) { isAnyThere = isAnyThere || known.in(observation); });
  return !isAnyThere;
}

// The step without its time, to which the readings refer.
template <typename Visitor>
void visit(Visitor& members, Step& entry)
{
  Ambiance ambiance{entry.movements, entry.ambianceActivity};
  members.optional("dated", entry.isDated, entry.isDated);
  members.optional("start", entry.scopeStarts, entry.scopeStarts.empty());
  members.optional("ambiance", ambiance, ambiance.movements == 0 && !ambiance.activity);
  members.optional("person", entry.person, !entry.person);
  members.optional("name", entry.personName, entry.personName.empty());
  members.optional("seen", entry.seen, entry.seen);
  members.optional("observation", entry.observation, isEmpty(entry.observation));
  members.optional("stop", entry.scopeStops, entry.scopeStops.empty());
  entry.movements = ambiance.movements;
  entry.ambianceActivity = ambiance.activity;
}

template <typename Visitor>
void visit(Visitor& members, BoundarySettings& boundaries)
{
  const auto boundary = [&members](const char* name, auto& field) { members.optional(name, field, !field); };
  boundary("positive", boundaries.positive);
  boundary("negative", boundaries.negative);
  boundary("confidence", boundaries.confidence);
  boundary("lookingAtRobot", boundaries.lookingAtRobot);
  boundary("strictlyLookingAtRobot", boundaries.strictlyLookingAtRobot);
  boundary("excited", boundaries.excited);
}

// The line without its time.
template <typename Visitor>
void visit(Visitor& members, StreamLine& line)
{
  members.optional("boundaries", line.boundaries, false);
  members.optional("leave", line.leaving, line.leaving.empty());
  visit(members, line.entry);
}

std::int64_t nanosecondsOf(TimePoint time)
{
  return time.time_since_epoch().count();
}

TimePoint timeOf(std::int64_t nanoseconds)
{
  return TimePoint(boost::chrono::nanoseconds(nanoseconds));
}

// Writes the members of one record into a JSON object of a document.
class ObjectWriter
{
public:
  ObjectWriter(Json& object, TimePoint stepTime) : _object(object), _stepTime(stepTime) { _object = Json::object(); }

  template <typename Field>
  void required(const char* name, Field& field)
  {
    _write(Document::member(_object, name), field);
  }

  template <typename Field>
  void optional(const char* name, Field& field, bool isVoid)
  {
    if (!isVoid)
      required(name, field);
  }

private:
  static void _write(Json& target, bool value) { target = value; }
  static void _write(Json& target, std::int32_t value) { target = value; }
  static void _write(Json& target, std::uint32_t value) { target = value; }
  static void _write(Json& target, std::int64_t value) { target = value; }
  static void _write(Json& target, std::string& value) { target = value; }

  static void _write(Json& target, float value)
  {
    if (std::isnan(value))
      target = "NaN";
    else if (std::isinf(value))
      target = value > 0.f ? "Infinity" : "-Infinity";
    else
      target = value;
  }

  template <typename T>
  void _writeAll(Json& target, T& values) const
  {
    target = Json::array();
    for (auto& value : values)
      _write(Document::element(target), value);
  }

  template <typename T, std::size_t Count>
  void _write(Json& target, std::array<T, Count>& values) const
  {
    _writeAll(target, values);
  }

  template <typename T>
  void _write(Json& target, std::vector<T>& values) const
  {
    _writeAll(target, values);
  }

  template <typename T>
  void _write(Json& target, boost::optional<T>& value) const
  {
    _write(target, *value);
  }

  template <typename T>
  void _write(Json& target, KV::Timestamped<T>& reading) const
  {
    ObjectWriter members(target, _stepTime);
    if (reading.time != _stepTime)
      Document::member(target, "time") = nanosecondsOf(reading.time);
    visit(members, reading.value);
  }

  template <typename T>
  void _write(Json& target, T& record) const
  {
    ObjectWriter members(target, _stepTime);
    visit(members, record);
  }

  Json& _object;
  TimePoint _stepTime;
};

// Two forms of a parsed line: a tree, and the parts of a plain line one after the other. The tree has the messages for
// a wrong line; the parts take a tenth of its time.
using TreeValue = JsonValue<Json>;
using FlatValue = FlatJson::Value;

bool isObject(const TreeValue& value)
{
  return value->is_object();
}

bool isObject(const FlatValue& value)
{
  return value.isObject();
}

std::optional<std::size_t> sizeOfArray(const TreeValue& value)
{
  return value->is_array() ? std::optional<std::size_t>(value->size()) : std::nullopt;
}

std::optional<std::size_t> sizeOfArray(const FlatValue& value)
{
  return value.isArray() ? std::optional<std::size_t>(value.size()) : std::nullopt;
}

template <typename Read>
void forEachElement(const TreeValue& array, Read read)
{
  for (std::size_t i = 0; i < array->size(); ++i)
    read(i, array.element(i));
}

template <typename Read>
void forEachElement(const FlatValue& array, Read read)
{
  FlatValue element = array.first();
  for (std::size_t i = 0; i < array.size(); ++i, element = element.next())
    read(i, element);
}

std::optional<bool> asBool(const TreeValue& value)
{
  return value->is_boolean() ? std::optional<bool>(value->get<bool>()) : std::nullopt;
}

std::optional<bool> asBool(const FlatValue& value)
{
  return value.asBool();
}

std::optional<std::string_view> asText(const TreeValue& value)
{
  if (!value->is_string())
    return {};
  return value->get_ref<const std::string&>();
}

std::optional<std::string_view> asText(const FlatValue& value)
{
  return value.asText();
}

std::optional<float> asFloat(const TreeValue& value)
{
  return value->is_number() ? std::optional<float>(value->get<float>()) : std::nullopt;
}

std::optional<float> asFloat(const FlatValue& value)
{
  return value.asFloat();
}

template <typename Integer>
std::optional<Integer> asWhole(const TreeValue& value)
{
  using Limits = std::numeric_limits<Integer>;
  // JSON for Modern C++ keeps a number that is not negative as an unsigned one.
  const bool fits = value->is_number_unsigned()
                        ? value->get<std::uint64_t>() <= static_cast<std::uint64_t>(Limits::max())
                        : value->is_number_integer() && Limits::is_signed &&
                              value->get<std::int64_t>() >= static_cast<std::int64_t>(Limits::min());
  return fits ? std::optional<Integer>(value->get<Integer>()) : std::nullopt;
}

template <typename Integer>
std::optional<Integer> asWhole(const FlatValue& value)
{
  return value.asWhole<Integer>();
}

[[noreturn]] void refuse(const TreeValue& value, const std::string& expected)
{
  value.refuse(expected);
}

[[noreturn]] void refuse(const FlatValue&, const char*)
{
  throw NotPlain();
}

[[noreturn]] void refuse(const FlatValue&, const std::string&)
{
  throw NotPlain();
}

// The members of an object, by request.
class TreeMembers
{
public:
  using Value = TreeValue;

  explicit TreeMembers(const TreeValue& object) : _object(object) {}

  std::optional<TreeValue> find(const char* name)
  {
    _known.emplace_back(name);
    const auto found = _object->find(name);
    return found != _object->end() ? std::optional<TreeValue>(std::in_place, _object, name, *found) : std::nullopt;
  }

  [[noreturn]] void refuseMissing(const char* name) const { throw JsonError(_object.memberPath(name), "is missing"); }

  // Refuses members that were not requested.
  void finish() const
  {
    for (const auto& [name, value] : _object->items())
      if (std::find(_known.begin(), _known.end(), name) == _known.end())
        _object.refuseMember(name, _expectedMembers());
  }

private:
  std::string _expectedMembers() const
  {
    std::string text;
    for (const std::string_view name : _known)
      text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
  }

  const TreeValue& _object;
  std::vector<std::string_view> _known;
};

// As above. Members are mostly in the order of requests, so a search begins where the last one
// ended.
class FlatMembers
{
public:
  using Value = FlatValue;

  explicit FlatMembers(const FlatValue& object) : _object(object), _next(object.first()) {}

  std::optional<FlatValue> find(std::string_view name)
  {
    for (std::size_t i = 0; i < _object.size(); ++i)
    {
      const FlatValue candidate = _next;
      _moveOn();
      if (candidate.name() != name)
        continue;
      ++_found;
      return candidate;
    }
    return {};
  }

  [[noreturn]] void refuseMissing(const char*) const { throw NotPlain(); }

  // No member is requested twice. So if fewer were found than exist, one is there twice, or one was not requested.
  void finish() const
  {
    if (_found != _object.size())
      throw NotPlain();
  }

private:
  void _moveOn()
  {
    ++_index;
    _next = _next.next();
    if (_index < _object.size())
      return;
    _index = 0;
    _next = _object.first();
  }

  const FlatValue& _object;
  FlatValue _next;
  std::size_t _index = 0;  // of _next
  std::size_t _found = 0;
};

// Reads the members of one record from a JSON object, in either form.
template <typename Members>
class ObjectReader
{
public:
  using Value = typename Members::Value;

  // The object has to outlive the reader.
  ObjectReader(const Value& object, TimePoint stepTime) : _members(checked(object)), _stepTime(stepTime) {}

  template <typename Field>
  void required(const char* name, Field& field)
  {
    const auto found = _members.find(name);
    if (!found)
      _members.refuseMissing(name);
    _read(*found, field);
  }

  template <typename Field>
  void optional(const char* name, Field& field, bool)
  {
    if (const auto found = _members.find(name))
      _read(*found, field);
  }

  // Refuses members that were not requested.
  void finish() const { _members.finish(); }

private:
  static const Value& checked(const Value& object)
  {
    if (!isObject(object))
      refuse(object, "an object");
    return object;
  }

  static void _read(const Value& value, bool& field)
  {
    const auto content = asBool(value);
    if (!content)
      refuse(value, "true or false");
    field = *content;
  }

  static void _read(const Value& value, std::string& field)
  {
    const auto content = asText(value);
    if (!content)
      refuse(value, "a text");
    field = *content;
  }

  static void _read(const Value& value, float& field)
  {
    if (const auto number = asFloat(value))
    {
      field = *number;
      return;
    }
    const auto name = asText(value);
    if (name == "NaN")
      field = std::numeric_limits<float>::quiet_NaN();
    else if (name == "Infinity")
      field = std::numeric_limits<float>::infinity();
    else if (name == "-Infinity")
      field = -std::numeric_limits<float>::infinity();
    else
      refuse(value, R"(a number, "NaN", "Infinity" or "-Infinity")");
  }

  template <typename Integer>
  static void _readInteger(const Value& value, Integer& field)
  {
    using Limits = std::numeric_limits<Integer>;
    const auto number = asWhole<Integer>(value);
    if (!number)
      refuse(value, "a whole number from " + std::to_string(Limits::min()) + " to " + std::to_string(Limits::max()));
    field = *number;
  }

  static void _read(const Value& value, std::int32_t& field) { _readInteger(value, field); }
  static void _read(const Value& value, std::uint32_t& field) { _readInteger(value, field); }
  static void _read(const Value& value, std::int64_t& field) { _readInteger(value, field); }

  template <typename T, std::size_t Count>
  void _read(const Value& value, std::array<T, Count>& fields) const
  {
    if (sizeOfArray(value) != Count)
      refuse(value, "an array of " + std::to_string(Count) + " elements");
    forEachElement(value, [&](std::size_t i, const Value& element) { _read(element, fields.at(i)); });
  }

  template <typename T>
  void _read(const Value& value, std::vector<T>& fields) const
  {
    const auto size = sizeOfArray(value);
    if (!size)
      refuse(value, "an array");
    fields.resize(*size);
    forEachElement(value, [&](std::size_t i, const Value& element) { _read(element, fields[i]); });
  }

  template <typename T>
  void _read(const Value& value, boost::optional<T>& field) const
  {
    T content{};
    _read(value, content);
    field = content;
  }

  template <typename T>
  void _read(const Value& value, KV::PersonObservation::Reading<T>& field) const
  {
    ObjectReader members(value, _stepTime);
    std::int64_t time = nanosecondsOf(_stepTime);
    members.optional("time", time, false);
    T content = blankReading<T>();
    visit(members, content);
    members.finish();
    field.emplace(timeOf(time), content);
  }

  template <typename T>
  void _read(const Value& value, T& record) const
  {
    ObjectReader members(value, _stepTime);
    visit(members, record);
    members.finish();
  }

  Members _members;
  TimePoint _stepTime;
};

// Checks while parsing: names that are doubled, and more parts than one step can have.
class Guard
{
public:
  void operator()(int depth, Json::parse_event_t event, const std::string& name)
  {
    if (depth > deepestNesting || ++_parts > mostParts)
      throw MemberError("", "is nested too deep, or has too many parts, for one step");
    if (event == Json::parse_event_t::object_start)
      _namesAt(depth + 1).clear();
    else if (event == Json::parse_event_t::key)
      _add(name, _namesAt(depth));
  }

private:
  std::vector<std::string>& _namesAt(int depth) { return _names.at(static_cast<std::size_t>(depth)); }

  static void _add(const std::string& name, std::vector<std::string>& names)
  {
    if (std::find(names.begin(), names.end(), name) != names.end())
      throw MemberError(shortened(name), "this member is there twice");
    names.push_back(name);
  }

  std::array<std::vector<std::string>, deepestNesting + 2> _names;  // so far, by depth
  std::size_t _parts = 0;
};

// "[json.exception...] parse error at line 1, column 9: why": the text is one line.
std::string shortened(const std::string& parserMessage)
{
  constexpr std::size_t longest = 200;
  const std::size_t begin = parserMessage.find("column ");
  return parserMessage.substr(begin == std::string::npos ? 0 : begin, longest);
}

Document parsed(std::string_view text)
{
  Guard guard;
  try
  {
    refuseNul(text);
    return Document(text, std::ref(guard));
  }
  catch (const JsonError& error)
  {
    throw MemberError("", error.what());
  }
  catch (const Json::parse_error& error)
  {
    throw MemberError("", "expected a JSON object on one line, but " + shortened(error.what()));
  }
  catch (const Json::out_of_range& error)
  {
    throw MemberError("", "a number is too large for single precision: " + shortened(error.what()));
  }
}

void refuseContradictions(const Step& entry)
{
  if (entry.movements < 0)
    throw MemberError("ambiance.movements", "expected no negative number, found " + std::to_string(entry.movements));
  if (!entry.person && !isEmpty(entry.observation))
    throw MemberError("person", "is missing: whose observation is it?");
  if (!entry.person && !entry.personName.empty())
    throw MemberError("person", "is missing: whose name is it?");
  if (!entry.person && !entry.seen)
    throw MemberError("person", "is missing: who was not seen?");
  if (!entry.seen && !isEmpty(entry.observation))
    throw MemberError("observation", "a person who was not seen has no observation");
}

template <typename Members>
TimePoint timeOfLine(const typename Members::Value& object, const boost::optional<TimePoint>& otherwise)
{
  std::int64_t time = nanosecondsOf(otherwise.value_or(TimePoint()));
  ObjectReader<Members> members(object, TimePoint());
  if (otherwise)
    members.optional("time", time, false);
  else
    members.required("time", time);
  if (time < 0)
    throw MemberError("time", "is before 1970; such times mean \"never\"");
  return timeOf(time);
}

// Reads the members of `line`; `time` is the line's time, and the time of readings without their own.
template <typename Members, typename Line>
void readMembers(const typename Members::Value& document, const boost::optional<TimePoint>& otherwise, TimePoint& time,
                 Line& line)
{
  time = timeOfLine<Members>(document, otherwise);
  ObjectReader<Members> members(document, time);
  std::int64_t known = 0;
  members.optional("time", known, false);
  visit(members, line);
  members.finish();
}

TimePoint& timeIn(Step& entry)
{
  return entry.time;
}

TimePoint& timeIn(StreamLine& line)
{
  return line.entry.time;
}

template <typename Line>
Line readTree(std::string_view text, const boost::optional<TimePoint>& otherwise)
{
  const Document document = parsed(text);
  const Json& object = document.root();
  if (!object.is_object())
    throw MemberError("", "expected a JSON object on one line, found " + quote(text));
  try
  {
    Line line;
    readMembers<TreeMembers>(TreeValue(object), otherwise, timeIn(line), line);
    return line;
  }
  catch (const JsonError& error)
  {
    throw MemberError(error.path(), error.what());
  }
}

// Returns nothing for a line that is not plain, or has an error: the tree's parser then chooses the error to report.
template <typename Line>
std::optional<Line> readPlain(std::string_view text, const boost::optional<TimePoint>& otherwise)
{
  try
  {
    const FlatJson json(text);
    std::optional<Line> line(std::in_place);
    readMembers<FlatMembers>(json.document(), otherwise, timeIn(*line), *line);
    return line;
  }
  catch (const NotPlain&)
  {
    return {};
  }
  catch (const MemberError&)
  {
    return {};
  }
}

template <typename Line>
Line readLine(std::string_view text, const boost::optional<TimePoint>& otherwise)
{
  if (auto line = readPlain<Line>(text, otherwise))
    return std::move(*line);
  return readTree<Line>(text, otherwise);
}

}  // namespace

std::string stepToJson(const Step& entry)
{
  Step copy = entry;
  Document document;
  ObjectWriter members(document.root(), entry.time);
  Document::member(document.root(), "time") = nanosecondsOf(entry.time);
  visit(members, copy);
  return document.root().dump();
}

Step stepFromJson(std::string_view text)
{
  Step entry = readLine<Step>(text, {});
  refuseContradictions(entry);
  return entry;
}

Step stepFromJsonTree(std::string_view text)
{
  Step entry = readTree<Step>(text, {});
  refuseContradictions(entry);
  return entry;
}

bool isPlainStep(std::string_view text)
{
  return readPlain<Step>(text, {}).has_value();
}

StreamLine streamLineFromJson(std::string_view text, boost::optional<ko::SystemClock::time_point> arrival)
{
  StreamLine line = readLine<StreamLine>(text, arrival);
  refuseContradictions(line.entry);
  return line;
}

StreamLine streamLineFromJsonTree(std::string_view text, boost::optional<ko::SystemClock::time_point> arrival)
{
  StreamLine line = readTree<StreamLine>(text, arrival);
  refuseContradictions(line.entry);
  return line;
}

}  // namespace KV::recordings
