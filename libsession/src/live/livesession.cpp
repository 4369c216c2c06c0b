#include <skeigiot/session/livesession.hpp>

#include <skeigiot/leaveoutahead.hpp>
#include <skeigiot/session/boundary.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

namespace KV::session
{

namespace
{

const boost::chrono::seconds furthestAhead{1};

constexpr std::string_view blanks = " \t\r\n";

bool isBlank(std::string_view line)
{
  return line.find_first_not_of(blanks) == std::string_view::npos;
}

const Boundary& boundaryOf(const std::string& option)
{
  return *std::find_if(boundaries().begin(), boundaries().end(),
                       [&option](const Boundary& boundary) { return boundary.option == option; });
}

/// A member of a line, and the boundary that it sets.
struct BoundaryMember
{
  const char* member;
  const char* option;
  boost::optional<float> recordings::BoundarySettings::*value;
};

/// Sets all or none.
///
/// \throws MemberError if the library rejects one.
void setBoundaries(const recordings::BoundarySettings& settings)
{
  using Settings = recordings::BoundarySettings;
  static constexpr std::array<BoundaryMember, 6> members = {
      {{"positive", "boundary-positive", &Settings::positive},
       {"negative", "boundary-negative", &Settings::negative},
       {"confidence", "boundary-confidence", &Settings::confidence},
       {"lookingAtRobot", "boundary-looking-at-robot", &Settings::lookingAtRobot},
       {"strictlyLookingAtRobot", "boundary-strictly-looking-at-robot", &Settings::strictlyLookingAtRobot},
       {"excited", "boundary-excited", &Settings::excited}}};
  std::optional<SavedBoundaries> saved;
  for (const BoundaryMember& member : members)
  {
    const boost::optional<float>& value = settings.*member.value;
    if (!value)
      continue;
    if (!saved)
      saved.emplace();
    const Boundary& boundary = boundaryOf(member.option);
    if (!setBoundary(boundary, *value))
      throw recordings::MemberError(std::string("boundaries.") + member.member,
                                    "expected a number that lies " + boundary.interval);
  }
  if (saved)
    saved->keep();
}

}  // namespace

LiveSession::LiveSession(StreamTimes times, std::function<TimePoint()> wallClock,
                         std::vector<SessionObserver*> observers, Cycle cycle)
  : _times(times), _wallClock(std::move(wallClock)), _session({}, std::move(observers), cycle)
{}

std::vector<std::int32_t> LiveSession::take(std::string_view text)
{
  if (isBlank(text))
    return {};
  if (_times == StreamTimes::Lines)
    return take(recordings::streamLineFromJson(text, boost::none));
  const TimePoint arrival = present();
  recordings::StreamLine line = recordings::streamLineFromJson(text, arrival);
  _setArrival(line, arrival);
  _play(line);
  return std::move(line.leaving);
}

std::vector<std::int32_t> LiveSession::take(recordings::StreamLine line)
{
  if (_times == StreamTimes::Arrival)
    _setArrival(line, present());
  else
    _checkTime(line);
  _play(line);
  return std::move(line.leaving);
}

void LiveSession::_play(const recordings::StreamLine& line)
{
  if (const auto found = recordings::implausibleReading(line.entry))
    throw recordings::MemberError("observation." + found->member, found->message);
  if (const std::string refusal = _session.whyScopesCannotStart(line.entry); !refusal.empty())
    throw recordings::MemberError("start", refusal);
  if (!_session.hasRoomInScopes(line.entry))
    throw recordings::MemberError("person",
                                  "the open scopes have too many persons together: stop scopes that are over");
  setBoundaries(line.boundaries);
  for (const std::int32_t person : line.leaving)
  {
    _session.forget(person);
    if (_left)
      _left(person);
  }
  const bool standsStill = _times == StreamTimes::Arrival && line.entry.time == _now;
  if (standsStill && line.entry.person)
    _session.restartCycle(*line.entry.person);
  _now = line.entry.time;
  _session.play(line.entry);
}

// The wall clock may be set back. The clock of the session does not advance then, and each line updates until it does.
TimePoint LiveSession::present() const
{
  return _times == StreamTimes::Arrival ? std::max(_now, _wallClock()) : _now;
}

// The time of the line until then, if it has one, is that of its readings.
void LiveSession::_setArrival(recordings::StreamLine& line, TimePoint arrival)
{
  if (const auto found = recordings::implausibleTime(line.entry.time))
    throw recordings::MemberError(found->member, found->message);
  if (line.entry.time > arrival + furthestAhead)
    throw recordings::MemberError(
        "time", "lies more than a second ahead: compare the clocks of the sender and of this machine");
  if (KV::leaveOutAhead(line.entry.observation, arrival + furthestAhead) > 0)
    throw recordings::MemberError("observation",
                                  "a reading lies more than a second ahead: it would count as new until then");
  line.entry.time = arrival;
}

void LiveSession::_checkTime(const recordings::StreamLine& line)
{
  if (line.entry.time < _now)
    throw recordings::MemberError("time", "time runs backwards, expected the lines in the order of their times");
  if (const auto found = _units.look(line.entry))
    throw recordings::MemberError(found->member, found->message);
}

}  // namespace KV::session
