#include "face/mapping.hpp"

#include "face/actionunits.hpp"
#include "face/emotions.hpp"
#include "input/jsondocument.hpp"
#include "tidy/tidyreadings.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
using Json = nlohmann::json;

constexpr std::size_t largestFile = limits::largestMapping;  // [bytes]
constexpr int deepestNesting = limits::deepestJson;

using Document = JsonDocument<Json>;
using Value = JsonValue<Json>;

struct Member
{
  const char* name;
  std::function<void(const Value&)> read;
};

// Reads the members that exist, and refuses others.
void readObject(const Value& object, const std::vector<Member>& members)
{
  std::string names;
  for (const Member& member : members)
    names += (names.empty() ? "" : ", ") + std::string(member.name);
  if (!object->is_object())
    object.refuse("an object with members of " + names);
  for (const auto& [name, json] : object->items())
  {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [&name = name](const Member& member) { return name == member.name; });
    if (found == members.end())
      object.refuseMember(name, names);
    found->read(Value(object, name, json));
  }
}

float readNumber(const Value& value)
{
  const double number = value->is_number() ? value->get<double>() : std::numeric_limits<double>::quiet_NaN();
  if (!(std::abs(number) <= 1e6))
    value.refuse("a number of no more than a million");
  return static_cast<float>(number);
}

// One of two words.
bool readWord(const Value& value, const std::string& yes, const std::string& no)
{
  if (*value == yes)
    return true;
  if (*value != no)
    value.refuse("\"" + yes + "\" or \"" + no + "\"");
  return false;
}

/// The scores from which a table can be made.
struct ScoreNames
{
  bool (*isOne)(const std::string& name);
  const char* expected;
};

std::vector<std::string> readNames(const Value& value, const ScoreNames& names)
{
  if (!value->is_array() || value->empty())
    value.refuse("a list of " + std::string(names.expected));
  std::vector<std::string> result;
  for (std::size_t i = 0; i < value->size(); ++i)
  {
    const Value element = value.element(i);
    if (!element->is_string() || !names.isOne(element->get<std::string>()))
      element.refuse(names.expected);
    result.push_back(element->get<std::string>());
  }
  return result;
}

std::vector<ScoreTerm> readTerms(const Value& value, const ScoreNames& names)
{
  if (!value->is_array())
    value.refuse("a list of terms");
  std::vector<ScoreTerm> terms;
  for (std::size_t i = 0; i < value->size(); ++i)
  {
    const Value element = value.element(i);
    ScoreTerm term;
    readObject(element, {{"of", [&](const Value& of) { term.of = readNames(of, names); }},
                         {"weight", [&](const Value& weight) { term.weight = readNumber(weight); }}});
    if (term.of.empty())
      element.refuse("a term with a member of");
    terms.push_back(std::move(term));
  }
  return terms;
}

// null: the table does not have the reading.
Composition readComposition(const Value& value, const ScoreNames& names)
{
  Composition composition;
  if (value->is_null())
    return composition;
  readObject(value, {{"sum", [&](const Value& sum) { composition.sum = readTerms(sum, names); }},
                     {"limit", [&](const Value& limit) { composition.limit = readTerms(limit, names); }}});
  if (composition.sum.empty())
    value.refuse("null, or an object with a member sum that is not empty");
  return composition;
}

// Adds a member for each reading in the table.
std::vector<Member> membersOf(ScoreTable& table, const ScoreNames& names)
{
  std::vector<Member> members;
  for (const ScoreTableMember& member : scoreTableMembers())
    members.push_back({member.name, [&table, member, names](const Value& value) {
                         table.*member.composition = readComposition(value, names);
                       }});
  return members;
}

RestingScore readRestingScore(const Value& value, RestingScore score)
{
  const auto readShare = [](const Value& share) {
    const float number = readNumber(share);
    if (!(number >= 0.f && number <= 1.f))
      share.refuse("a number from 0 to 1");
    return number;
  };
  readObject(value, {{"typical", [&](const Value& typical) { score.typical = readShare(typical); }},
                     {"most", [&](const Value& most) { score.most = readShare(most); }}});
  return score;
}

// {"AU04": {"typical": 0.15, "most": 0.5}}
void readRest(const Value& value, std::map<std::string, RestingScore>& rest, const ScoreNames& names)
{
  if (!value->is_object())
    value.refuse("an object with a member for each score that does not rest at 0");
  for (const auto& [name, json] : value->items())
  {
    if (!names.isOne(name))
      value.refuseMember(name, names.expected);
    rest[name] = readRestingScore(Value(value, name, json), rest[name]);
  }
}

std::vector<Member> membersWithRest(ScoreTable& table, const ScoreNames& names)
{
  auto members = membersOf(table, names);
  members.push_back({"rest", [&table, names](const Value& value) { readRest(value, table.rest, names); }});
  return members;
}

void readTable(const Value& value, ScoreTable& table, const ScoreNames& names)
{
  readObject(value, membersOf(table, names));
}

void readActionUnits(const Value& value, Mapping& mapping, const ScoreNames& names)
{
  readObject(value, membersWithRest(mapping.actionUnits, names));
  const auto ownRest = mapping.pyFeatActionUnits.rest;
  mapping.pyFeatActionUnits = mapping.actionUnits;
  mapping.pyFeatActionUnits.rest = ownRest;
}

const ScoreNames blendshapes{isBlendshape, "the name of a blendshape, such as jawOpen"};

void readBlendshapes(const Value& value, Mapping& mapping)
{
  auto members = membersWithRest(mapping.blendshapes, blendshapes);
  members.push_back({"eyes", [&mapping](const Value& eyes) {
                       readObject(eyes,
                                  {{"yaw", [&](const Value& yaw) { mapping.eyes.yaw = readNumber(yaw); }},
                                   {"pitch", [&](const Value& pitch) { mapping.eyes.pitch = readNumber(pitch); }}});
                     }});
  readObject(value, members);
}

void readPyFeat(const Value& value, PyFeatConventions& conventions)
{
  readObject(value,
             {{"angles", [&](const Value& unit) { conventions.degrees = readWord(unit, "degrees", "radians"); }},
              {"pitch", [&](const Value& sign) { conventions.pitchIsUp = readWord(sign, "up", "down"); }},
              {"gazeYaw", [&](const Value& sign) { conventions.gazeYawIsLeft = readWord(sign, "left", "right"); }},
              {"gazePitch", [&](const Value& sign) { conventions.gazePitchIsUp = readWord(sign, "up", "down"); }}});
}

/// Refuses persons of whom some have names and some numbers.
class PersonKind
{
public:
  void add(const Value& value, bool isNumber)
  {
    if (_areNumbers.value_or(isNumber) != isNumber)
      value.refuse("all persons by their names, or all by their numbers");
    _areNumbers = isNumber;
  }

private:
  std::optional<bool> _areNumbers;
};

bool isPersonNumber(const Value& value)
{
  using Limits = std::numeric_limits<std::int32_t>;
  return value->is_number_integer() && value->get<double>() >= static_cast<double>(Limits::min()) &&
         value->get<double>() <= static_cast<double>(Limits::max());
}

bool isText(const Value& value)
{
  return value->is_string() && !value->get_ref<const std::string&>().empty();
}

// {"SPEAKER_00": "anna", "SPEAKER_01": null}
void readSpeakers(const Value& value, SpeakerTable& speakers)
{
  if (!value->is_object())
    value.refuse("an object with a member for each speaker");
  PersonKind kind;
  for (const auto& [name, json] : value->items())
  {
    const Value member(value, name, json);
    SpeakerPerson& person = speakers[name];
    if (isPersonNumber(member))
      person.number = member->get<std::int32_t>();
    else if (isText(member))
      person.name = member->get<std::string>();
    else if (!member->is_null())
      member.refuse("the number or name of a person, or null for nobody");
    if (!person.isNobody())
      kind.add(member, person.number.has_value());
  }
}

double readFinite(const Value& value)
{
  const double number = value->is_number() ? value->get<double>() : std::numeric_limits<double>::quiet_NaN();
  if (!(std::abs(number) <= 1e9))
    value.refuse("a number of no more than a billion");
  return number;
}

// "GazeYaw", 3, or {"channel": 3, "factor": 57.3, "offset": -1}
XdfChannel readChannel(const Value& value, const std::string& reading)
{
  XdfChannel channel;
  channel.reading = reading;
  const auto take = [&channel](const Value& which) {
    if (isText(which))
      channel.label = which->get<std::string>();
    else if (which->is_number_unsigned())
      channel.index = which->get<std::size_t>();
    else
      which.refuse("the label of a channel, or its index from 0 on");
  };
  if (!value->is_object())
  {
    take(value);
    return channel;
  }
  readObject(value, {{"channel", take},
                     {"factor", [&channel](const Value& factor) { channel.factor = readFinite(factor); }},
                     {"offset", [&channel](const Value& offset) { channel.offset = readFinite(offset); }}});
  if (channel.label.empty() && !channel.index)
    value.refuse("an object with a member channel");
  return channel;
}

/// Returns whether a number may be this reading, or a part of it.
bool isReadingOfNumbers(const std::string& name)
{
  const auto known = tidyReadingNamed(name);
  if (known)
    return name != "start" && name != "stop" && known->needed == std::vector<TidyColumn>{TidyColumn::Value};
  const std::size_t dot = name.rfind('.');
  const auto column = dot == std::string::npos ? std::nullopt : tidyColumnNamed(name.substr(dot + 1));
  const auto reading = column ? tidyReadingNamed(name.substr(0, dot)) : std::nullopt;
  if (!reading || *column == TidyColumn::Value || name.rfind("start.", 0) == 0)
    return false;
  const auto contains = [&column](const std::vector<TidyColumn>& columns) {
    return std::find(columns.begin(), columns.end(), *column) != columns.end();
  };
  return *column == TidyColumn::Confidence || contains(reading->needed) || contains(reading->optional);
}

void readChannels(const Value& value, std::vector<XdfChannel>& channels)
{
  if (!value->is_object())
    value.refuse("an object with a member for each reading");
  for (const auto& [reading, json] : value->items())
  {
    if (!isReadingOfNumbers(reading))
      value.refuseMember(reading, "readings such as smile, gaze.yaw or expressions.joy");
    channels.push_back(readChannel(Value(value, reading, json), reading));
  }
}

// [{"stream": "Face", "person": "anna", "channels": {"smile": "Smile"}}]
void readStreams(const Value& value, XdfMapping& streams)
{
  if (!value->is_array())
    value.refuse("a list of streams");
  PersonKind kind;
  for (std::size_t i = 0; i < value->size(); ++i)
  {
    const Value element = value.element(i);
    XdfStreamMapping stream;
    const auto readPerson = [&](const Value& person) {
      if (!isPersonNumber(person) && !isText(person))
        person.refuse("the number or name of a person");
      kind.add(person, isPersonNumber(person));
      stream.person = isText(person) ? person->get<std::string>() : std::to_string(person->get<std::int32_t>());
    };
    const auto readScopes = [&stream](const Value& scopes) {
      if (!scopes->is_boolean())
        scopes.refuse("true or false");
      stream.areScopes = scopes->get<bool>();
    };
    const auto readStream = [&stream](const Value& name) {
      if (!isText(name))
        name.refuse("the name, type or source_id of a stream");
      stream.stream = name->get<std::string>();
    };
    readObject(element, {{"stream", readStream},
                         {"person", readPerson},
                         {"scopes", readScopes},
                         {"channels", [&stream](const Value& channels) { readChannels(channels, stream.channels); }}});
    if (stream.stream.empty())
      element.refuse("a stream with a member stream");
    streams.push_back(std::move(stream));
  }
}

bool isEmotion(const std::string& name)
{
  return std::find(emotionNames().begin(), emotionNames().end(), name) != emotionNames().end();
}

Document parsed(const std::string& file)
{
  const std::string text = InputFile::head(file, largestFile + 1);
  if (text.size() > largestFile)
    throw Error({file, 0, {}}, "is larger than 1 MiB: this is no mapping");
  const auto guard = [&file](int depth, Json::parse_event_t, const std::string&) {
    if (depth > deepestNesting)
      throw Error({file, 0, {}}, "is nested too deep: this is no mapping");
  };
  try
  {
    refuseNul(text);
    return Document(text, guard);
  }
  catch (const JsonError& error)
  {
    throw Error({file, 0, {}}, error.what());
  }
  catch (const Json::exception& error)
  {
    throw Error({file, 0, {}}, "expected a JSON object, but " + withoutErrorCode(error.what()));
  }
}

}  // namespace

Mapping readMapping(const std::string& file)
{
  Mapping mapping{actionUnitTable(), actionUnitTable(),   blendshapeTable(), arkitTable(), EyeScale(),
                  emotionTable(),    PyFeatConventions(), SpeakerTable(),    XdfMapping()};
  mapping.pyFeatActionUnits.rest = pyFeatRest();
  if (file.empty())
    return mapping;

  const ScoreNames actionUnits{isActionUnitName, "the name of an action unit, such as AU06"};
  const ScoreNames emotions{isEmotion, "one of neutral, happy, sad, surprise, fear, disgust, anger"};
  const Document json = parsed(file);
  try
  {
    readObject(
        Value(json.root()),
        {{"actionUnits", [&](const Value& value) { readActionUnits(value, mapping, actionUnits); }},
         {"pyFeatActionUnits",
          [&](const Value& value) { readObject(value, membersWithRest(mapping.pyFeatActionUnits, actionUnits)); }},
         {"blendshapes", [&](const Value& value) { readBlendshapes(value, mapping); }},
         {"arkit", [&](const Value& value) { readObject(value, membersWithRest(mapping.arkit, blendshapes)); }},
         {"emotions", [&](const Value& value) { readTable(value, mapping.emotions, emotions); }},
         {"pyFeat", [&](const Value& value) { readPyFeat(value, mapping.pyFeat); }},
         {"speakers", [&](const Value& value) { readSpeakers(value, mapping.speakers); }},
         {"streams", [&](const Value& value) { readStreams(value, mapping.streams); }}});
  }
  catch (const JsonError& error)
  {
    throw Error({file, 0, error.path()}, error.what());
  }
  return mapping;
}

}  // namespace KV::recordings
