#include <skeigiot/session/livesession.hpp>

#include <skeigiot/leaveoutahead.hpp>
#include <skeigiot/session/boundary.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <stdexcept>
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

/// Sets boundaries, and takes all of that back unless it is kept.
class BoundaryChange
{
public:
  BoundaryChange() = default;
  ~BoundaryChange()
  {
    for (const auto& [boundary, before] : _before)
      boundary->set(before);
  }
  BoundaryChange(const BoundaryChange&) = delete;
  BoundaryChange& operator=(const BoundaryChange&) = delete;

  /// \throws MemberError if the library rejects one.
  void set(const recordings::BoundarySettings& settings)
  {
    _set("positive", "boundary-positive", settings.positive);
    _set("negative", "boundary-negative", settings.negative);
    _set("confidence", "boundary-confidence", settings.confidence);
    _set("lookingAtRobot", "boundary-looking-at-robot", settings.lookingAtRobot);
    _set("strictlyLookingAtRobot", "boundary-strictly-looking-at-robot", settings.strictlyLookingAtRobot);
    _set("excited", "boundary-excited", settings.excited);
  }

  void keep() { _before.clear(); }

private:
  void _set(const std::string& member, const std::string& option, const boost::optional<float>& value)
  {
    if (!value)
      return;
    const Boundary& boundary = boundaryOf(option);
    _before.emplace_back(&boundary, boundary.get());
    try
    {
      setBoundary(boundary, *value);
    }
    catch (const std::invalid_argument&)
    {
      throw recordings::MemberError("boundaries." + member, "expected a number that lies " + boundary.interval);
    }
  }

  std::vector<std::pair<const Boundary*, float>> _before;
};

}  // namespace

LiveSession::LiveSession(StreamTimes times, std::function<TimePoint()> wallClock,
                         std::vector<SessionObserver*> observers, Forces forces, Cycle cycle)
  : _times(times), _wallClock(std::move(wallClock)), _session({}, std::move(observers), forces, cycle)
{}

std::vector<std::int32_t> LiveSession::take(std::string_view line)
{
  if (isBlank(line))
    return {};
  recordings::StreamLine read = _times == StreamTimes::Arrival ? _readAtArrival(line) : _readAtItsTime(line);

  BoundaryChange change;
  change.set(read.boundaries);
  change.keep();
  for (const std::int32_t person : read.leaving)
    _session.forget(person);
  const bool standsStill = _times == StreamTimes::Arrival && read.entry.time == _now;
  if (standsStill && read.entry.person)
    _session.restartCycle(*read.entry.person);
  _now = read.entry.time;
  _session.play(read.entry);
  return read.leaving;
}

// The wall clock may be set back; that of the session stands still then. Each line updates until it goes on.
TimePoint LiveSession::present() const
{
  return _times == StreamTimes::Arrival ? std::max(_now, _wallClock()) : _now;
}

// The time of the line, if it has one, is that of its readings.
recordings::StreamLine LiveSession::_readAtArrival(std::string_view text) const
{
  const TimePoint arrival = present();
  recordings::StreamLine line = recordings::streamLineFromJson(text, arrival);
  if (line.entry.time > arrival + furthestAhead)
    throw recordings::MemberError(
        "time", "lies more than a second ahead: are the clocks of the sender and of this machine alike?");
  if (KV::leaveOutAhead(line.entry.observation, arrival + furthestAhead) > 0)
    throw recordings::MemberError("observation",
                                  "a reading lies more than a second ahead: it would count as new until then");
  line.entry.time = arrival;
  return line;
}

recordings::StreamLine LiveSession::_readAtItsTime(std::string_view text) const
{
  recordings::StreamLine line = recordings::streamLineFromJson(text, boost::none);
  if (line.entry.time < _now)
    throw recordings::MemberError("time", "time runs backwards, expected the lines in the order of their times");
  return line;
}

}  // namespace KV::session
