#include <skeigiot/session/timeline.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace KV::session
{

namespace
{

constexpr Duration tenth{100'000'000};
constexpr Duration second = 10 * tenth;
constexpr Duration minute = 60 * second;
constexpr Duration hour = 60 * minute;

constexpr Duration::rep mostShownRows = 40;
constexpr Duration::rep mostKeptRows = 240;

/// The time steps of rows in short recordings, if updates come often enough.
constexpr std::array shortSteps{tenth, 2 * tenth, 5 * tenth};

/// The time steps of displayed rows; after the last, they double.
constexpr std::array shownSteps{second,     2 * second, 5 * second,  10 * second, 15 * second, 30 * second, minute,
                                2 * minute, 5 * minute, 10 * minute, 15 * minute, 30 * minute, hour};

/// The time steps of stored rows; after the last, they double.
///
/// Each divides the next, so that whole rows can be merged. Each also divides all displayed steps that a recording of
/// more than mostKeptRows of the step before can need.
constexpr std::array keptSteps{tenth,  5 * tenth,  second,      5 * second,  10 * second, 30 * second,
                               minute, 5 * minute, 10 * minute, 30 * minute, hour};

/// Returns the shortest of the steps for which the time is in one of the first `rows` rows.
template <typename Steps>
Duration shortestStep(const Steps& steps, Duration time, Duration::rep rows)
{
  const auto fits = [=](Duration step) { return time / step < rows; };
  const auto found = std::find_if(steps.begin(), steps.end(), fits);
  if (found != steps.end())
    return *found;
  Duration step = 2 * steps.back();
  while (!fits(step))
    step *= 2;
  return step;
}

Duration rowStart(Duration time, Duration step)
{
  return time / step * step;
}

std::vector<TimelineRow> merged(const std::vector<TimelineRow>& rows, Duration step)
{
  std::vector<TimelineRow> result;
  for (const TimelineRow& row : rows)
  {
    const Duration from = rowStart(row.from(), step);
    if (result.empty() || result.back().from() != from)
      result.emplace_back(from);
    result.back().add(row);
  }
  return result;
}

}  // namespace

Timeline::Timeline(const boost::optional<Duration>& step, bool explained)
  : _givenStep(step), _explained(explained), _keptStep(step.value_or(tenth))
{}

void Timeline::stepBegins(const recordings::Step& step)
{
  if (step.person && step.observation.headPosture)
    ++_headDirections[*step.person].at(static_cast<std::size_t>(directionOf(step.observation.headPosture->value)));
}

void Timeline::personUpdated(const Snapshot& snapshot)
{
  _last = snapshot.sinceStart;
  if (!_givenStep)
    _keepWithin(_last);

  Rows& rows = _rows[snapshot.person];
  const Duration from = rowStart(_last, _keptStep);
  if (rows.empty() || rows.back().from() != from)
    rows.emplace_back(from);
  rows.back().add(snapshot);
  rows.back().add(_changes);
  rows.back().add(std::exchange(_headDirections[snapshot.person], {}));
  _changes.clear();
}

Duration Timeline::step() const
{
  if (_givenStep)
    return *_givenStep;
  const auto* const found = std::find_if(shortSteps.begin(), shortSteps.end(), [this](Duration step) {
    return _last / step < mostShownRows && _fillsRowsOf(step);
  });
  return found != shortSteps.end() ? *found : shortestStep(shownSteps, _last, mostShownRows);
}

std::map<std::int32_t, std::vector<TimelineRow>> Timeline::rows() const
{
  const Duration shown = step();  // it examines the rows of all persons
  std::map<std::int32_t, Rows> result;
  for (const auto& [person, rows] : _rows)
    result[person] = merged(rows, shown);
  return result;
}

/// Returns whether each row of each person between the first and the last would have an update.
bool Timeline::_fillsRowsOf(Duration step) const
{
  return std::all_of(_rows.begin(), _rows.end(), [step](const auto& ofPerson) {
    const Rows rows = merged(ofPerson.second, step);
    return (rows.back().from() - rows.front().from()) / step + 1 == static_cast<Duration::rep>(rows.size());
  });
}

void Timeline::_keepWithin(Duration time)
{
  const Duration step = shortestStep(keptSteps, time, mostKeptRows);
  if (step == _keptStep)
    return;
  _keptStep = step;
  for (auto& [person, rows] : _rows)
    rows = merged(rows, step);
}

}  // namespace KV::session
