#include <skeigiot/session/stream.hpp>

#include <skeigiot/session/exportfields.hpp>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace KV::session
{

namespace
{

/// Numbers with a fraction are single precision, and so have the shortest text that reads back as the same number.
using Json =
    nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool, std::int64_t, std::uint64_t, float>;

/// Adds what is exported of an update, as `skeigiot replay` does. The time is that of the answer, and there is one
/// recording only.
class StateMembers
{
public:
  explicit StateMembers(Json& object) : _object(object) {}

  template <typename Value>
  void operator()(const char* name, const Value& value)
  {
    const std::string_view field(name);
    if (field != "recording" && field != "file" && !isNameOfNobody(field, value))
      _object[name] = value;
  }
  void operator()(const char*, Duration) {}
  void operator()(const char*, const boost::optional<Duration>&) {}

private:
  Json& _object;
};

Json jsonOf(const ScopeVerdict& verdict)
{
  Json object = {{"scope", verdict.name}};
  if (verdict.end == ScopeEnd::NotOpen)
  {
    object["verdict"] = "error";
    return object;
  }
  Json persons = Json::array();
  for (const auto& [person, ofPerson] : verdict.persons)
  {
    Json& added = persons.emplace_back(Json{{"person", person}});
    if (std::string name = ofPerson.summary.name(); !name.empty())
      added["name"] = std::move(name);
    added["verdict"] = ofPerson.word;
    added["updates"] = ofPerson.updates;
  }
  object["persons"] = std::move(persons);
  return object;
}

/// The sender's bytes, which a message may quote, need not be UTF-8.
std::string lineOf(const Json& object)
{
  return object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace

/// It is called also for others, who waited too long; that is before the step begins.
void Stream::Observer::personUpdated(const Snapshot& snapshot)
{
  if (about != snapshot.person)
    return;
  person = snapshot;
  updated = true;
}

void Stream::Observer::clear()
{
  about = boost::none;
  person = boost::none;
  updated = false;
  ambiance = boost::none;
  verdicts.clear();
}

Stream::Stream(StreamTimes times, std::function<TimePoint()> wallClock, Cycle cycle)
  : _session(times, std::move(wallClock), {&_observer}, cycle)
{}

std::string Stream::answer(std::string_view line)
{
  ++_lineNumber;
  _observer.clear();
  try
  {
    _session.take(line);
  }
  catch (const recordings::MemberError& error)
  {
    _log.take();  // what the library warned of is in the error
    return _refusal(error.member(), error.what());
  }
  return _state();
}

std::string Stream::answerToLongLine(std::size_t longest)
{
  ++_lineNumber;
  return _refusal("", "is longer than " + std::to_string(longest) + " bytes");
}

std::string Stream::_refusal(const std::string& member, const std::string& message) const
{
  Json error = Json::object();
  if (!member.empty())
    error["field"] = member;
  error["message"] = message;
  return lineOf({{"line", _lineNumber}, {"error", error}});
}

std::string Stream::_state()
{
  Json object = {{"line", _lineNumber}, {"time", _session.now().time_since_epoch().count()}};
  if (_observer.about)
    object["updated"] = _observer.updated;
  if (_observer.person)
    forEachExportedField({}, *_observer.person, StateMembers(object));
  if (_observer.ambiance)
  {
    object["agitation"] = _observer.ambiance->agitation;
    object["excited"] = _observer.ambiance->excitation == KV::AmbianceExcited;
  }
  for (const ScopeVerdict& verdict : _observer.verdicts)
    object["verdicts"].push_back(jsonOf(verdict));
  for (std::string& note : _session.takeNotes())
    object["warnings"].push_back(std::move(note));
  for (std::string& warning : _log.take())
    object["warnings"].push_back(std::move(warning));
  return lineOf(object);
}

}  // namespace KV::session
