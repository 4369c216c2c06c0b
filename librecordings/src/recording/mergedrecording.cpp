#include <skeigiot/recordings/mergedrecording.hpp>

#include <skeigiot/readings.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <limits>
#include <numeric>
#include <utility>

namespace KV::recordings
{
namespace
{
using Duration = ko::SystemClock::duration;
using TimePoint = ko::SystemClock::time_point;

// Readings may have any time; times outside the clock's range are clamped.
TimePoint shifted(TimePoint time, Duration offset)
{
  Duration::rep sum = 0;
  if (__builtin_add_overflow(time.time_since_epoch().count(), offset.count(), &sum))
    sum = offset.count() > 0 ? std::numeric_limits<Duration::rep>::max() : std::numeric_limits<Duration::rep>::min();
  return TimePoint(Duration(sum));
}

void shift(Step& entry, Duration offset)
{
  entry.time = shifted(entry.time, offset);
  forEachReading([&](const auto& known) {
    if (auto& reading = known.in(entry.observation))
      reading->time = shifted(reading->time, offset);
  });
}

// Only the readings of a person.
bool isObservation(const Step& entry)
{
  return entry.person && entry.scopeStarts.empty() && entry.scopeStops.empty() && !entry.ambianceActivity &&
         entry.movements == 0;
}

bool collide(const KV::PersonObservation& left, const KV::PersonObservation& right)
{
  bool result = false;
  forEachReading([&](const auto& known) { result = result || (known.in(left) && known.in(right)); });
  return result;
}

// Returns the name of a reading that both have, made at the same time; null without one.
const char* sameReading(const KV::PersonObservation& left, const KV::PersonObservation& right)
{
  const char* name = nullptr;
  forEachReading([&](const auto& known) {
    const auto& one = known.in(left);
    const auto& other = known.in(right);
    if (name == nullptr && one && other && one->time == other->time)
      name = known.name;
  });
  return name;
}

// A person whom one input observes counts as observed, also if other inputs do not see them.
bool takeIn(Step& target, const Step& other)
{
  if (collide(target.observation, other.observation))
    return false;
  target.seen = target.seen || other.seen;
  if (target.personName.empty())
    target.personName = other.personName;
  forEachReading([&](const auto& known) {
    if (const auto& reading = known.in(other.observation))
      known.in(target.observation) = reading;
  });
  return true;
}

std::string dateOf(TimePoint time)
{
  const auto seconds = static_cast<std::time_t>(time.time_since_epoch().count() / 1'000'000'000);
  std::tm parts = {};
  std::array<char, 64> text{};
  if (gmtime_r(&seconds, &parts) == nullptr ||
      std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts) == 0)
    return "an unknown date";
  return text.data();
}

std::string secondsOf(Duration duration)
{
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.3f", static_cast<double>(duration.count()) * 1e-9);
  return text.data();
}

}  // namespace

MergedRecording::MergedRecording(std::vector<RecordingInput> inputs)
{
  for (RecordingInput& input : inputs)
    _inputs.emplace_back().from = std::move(input);
}

boost::optional<Step> MergedRecording::next()
{
  if (!_begun)
    _fetchFirst();
  while (!_read.empty() || _readOne())
  {
    Item item = std::move(_read.front());
    _read.pop_front();
    if (item.error)
      std::rethrow_exception(item.error);
    _refuseSameReading(item);
    if (item.input == 0)
      _takeInSimultaneous(item.entry);
    else if (_isTakenInLater(item))
      continue;
    return std::move(item.entry);
  }
  _warnOfLonelyPersons();
  return {};
}

std::vector<std::string> MergedRecording::describe() const
{
  std::vector<std::string> lines = {"One session of " + std::to_string(_inputs.size()) +
                                    " inputs, merged by time; readings of the others join the next step of the first"};
  for (const Input& input : _inputs)
  {
    const bool isMoved = input.from.offset != Duration(0);
    const std::string name =
        input.from.path + (isMoved ? " (moved by " + secondsOf(input.from.offset) + " s)" : "") + ": ";
    for (const std::string& line : input.from.reader->describe())
      lines.push_back(name + line);
  }
  return lines;
}

std::vector<std::string> MergedRecording::describeLearned() const
{
  std::vector<std::string> lines;
  for (const Input& input : _inputs)
    for (const std::string& line : input.from.reader->describeLearned())
      lines.push_back(input.from.path + ": " + line);
  return lines;
}

std::vector<std::string> MergedRecording::takeWarnings()
{
  std::vector<std::string> warnings;
  for (Input& input : _inputs)
    for (const std::string& warning : input.from.reader->takeWarnings())
      warnings.push_back(input.from.path + ": " + warning);
  warnings.insert(warnings.end(), _warnings.begin(), _warnings.end());
  _warnings.clear();
  return warnings;
}

bool MergedRecording::isDated() const
{
  return std::all_of(_inputs.begin(), _inputs.end(), [](const Input& input) {
    const bool wasMovedToADate = input.from.offset > greatestDistance;
    return input.from.reader->isDated() || wasMovedToADate;
  });
}

double MergedRecording::progress() const
{
  const double sum = std::accumulate(_inputs.begin(), _inputs.end(), 0., [](double sumSoFar, const Input& input) {
    return sumSoFar + input.from.reader->progress();
  });
  return sum / static_cast<double>(_inputs.size());
}

// The place of an error is the input's last position.
void MergedRecording::_fetch(std::size_t number)
{
  Input& input = _inputs[number];
  try
  {
    auto entry = input.from.reader->next();
    input.ended = !entry;
    if (!entry)
      return;
    shift(*entry, input.from.offset);
    if (entry->time < TimePoint())
      throw Error({input.from.path, 0, {}}, "the offset moves it to before 1970");
    if (entry->person)
    {
      _unifyPerson(*entry);
      input.persons.insert(*entry->person);
    }
    input.last = entry->time;
    input.ahead = Item{entry->time, number, std::move(*entry), nullptr};
    return;
  }
  catch (const BadLine&)
  {
    input.ahead = Item{input.last, number, {}, std::current_exception()};
  }
  catch (const Error&)
  {
    input.ahead = Item{input.last, number, {}, std::current_exception()};
    input.ended = true;
  }
}

// Each input numbers named persons for itself: equal names are the same person, different names different persons.
void MergedRecording::_unifyPerson(Step& entry)
{
  std::int32_t& person = *entry.person;
  const std::string& name = entry.personName;
  if (name.empty())
  {
    _names.emplace(person, name);
    return;
  }
  const auto known = _numbers.find(name);
  if (known != _numbers.end())
  {
    person = known->second;
    return;
  }
  const auto taken = _names.find(person);
  if (taken != _names.end() && !taken->second.empty())
  {
    person = 0;
    while (_names.count(person) > 0)
      ++person;
  }
  _names[person] = name;
  _numbers.emplace(name, person);
}

void MergedRecording::_fetchFirst()
{
  _begun = true;
  const Input* earliest = nullptr;
  const Input* latest = nullptr;
  for (std::size_t i = 0; i < _inputs.size(); ++i)
  {
    _fetch(i);
    const Input& input = _inputs[i];
    if (!input.ahead || input.ahead->error)
      continue;
    if (earliest == nullptr || input.last < earliest->last)
      earliest = &input;
    if (latest == nullptr || input.last > latest->last)
      latest = &input;
  }
  if (earliest == nullptr || latest->last - earliest->last <= greatestDistance)
    return;
  throw Error(
      {latest->from.path, 0, {}},
      "begins at " + dateOf(latest->last) + ", but " + earliest->from.path + " at " + dateOf(earliest->last) +
          ": one counts from its start (which is placed at 2020), the other since 1970, or they are no inputs of one "
          "session",
      Error::Remedy{earliest->from.path, latest->last - earliest->last + earliest->from.offset});
}

// Reads one more step, the next of all inputs; false at the end of all.
bool MergedRecording::_readOne()
{
  Input* next = nullptr;
  for (std::size_t i = 0; i < _inputs.size(); ++i)
  {
    Input& input = _inputs[i];
    if (!input.ahead && !input.ended)
      _fetch(i);
    if (input.ahead && (next == nullptr || input.ahead->time < next->ahead->time))
      next = &input;
  }
  if (next == nullptr)
    return false;
  _reached = std::max(_reached, next->ahead->time);
  _read.push_back(std::move(*next->ahead));
  next->ahead.reset();
  return true;
}

void MergedRecording::_readUntil(TimePoint time)
{
  while (_reached <= time && _readOne())
  {}
}

// Before any of them is merged into another.
void MergedRecording::_refuseSameReading(const Item& item)
{
  if (!item.entry.person)
    return;
  _readUntil(item.time);
  std::vector<const Item*> earlier = {&item};
  for (const Item& later : _read)
  {
    if (later.time > item.time)
      return;
    if (!later.isOf(item.entry.person))
      continue;
    for (const Item* const one : earlier)
      if (one->input != later.input)
        _refuseSameReading(*one, later);
    earlier.push_back(&later);
  }
}

void MergedRecording::_refuseSameReading(const Item& one, const Item& other) const
{
  const char* const name = sameReading(one.entry.observation, other.entry.observation);
  if (name != nullptr)
    throw Error({_inputs[other.input].from.path, 0, name},
                "person " + std::to_string(*one.entry.person) + " has this reading at the same time in " +
                    _inputs[one.input].from.path + ": these are recordings of two persons, or of two sessions",
                Error::Remedy());
}

// Adds the readings of other inputs about the same person at the same time.
void MergedRecording::_takeInSimultaneous(Step& entry)
{
  if (!entry.person)
    return;
  _readUntil(entry.time);
  for (auto item = _read.begin(); item != _read.end() && item->time == entry.time;)
  {
    const bool isTaken =
        item->input != 0 && item->isOf(entry.person) && isObservation(item->entry) && takeIn(entry, item->entry);
    item = isTaken ? _read.erase(item) : std::next(item);
  }
}

// Puts the step into the next one of the first input about that person, or into one of the same time.
bool MergedRecording::_isTakenInLater(const Item& item)
{
  if (!isObservation(item.entry))
    return false;
  _readUntil(shifted(item.time, longestWait));
  for (Item& later : _read)
  {
    if (later.time > shifted(item.time, longestWait))
      return false;
    if (!later.isOf(item.entry.person))
      continue;
    if (later.input == 0 || (later.time == item.time && later.input != item.input))
      return takeIn(later.entry, item.entry);
    if (later.input == item.input && collide(later.entry.observation, item.entry.observation))
      return false;  // the later step is added: readings of one kind stay in their order
  }
  return false;
}

// Persons of different inputs are the same if their numbers are.
void MergedRecording::_warnOfLonelyPersons()
{
  const std::set<std::int32_t>& known = _inputs.front().persons;
  for (std::size_t i = 1; i < _inputs.size(); ++i)
  {
    const std::set<std::int32_t>& persons = _inputs[i].persons;
    const auto isKnown = [&known](std::int32_t person) { return known.count(person) > 0; };
    if (!known.empty() && !persons.empty() && std::none_of(persons.begin(), persons.end(), isKnown))
      _warnings.push_back(_inputs[i].from.path + " has person " + std::to_string(*persons.begin()) + ", " +
                          _inputs.front().from.path + " has person " + std::to_string(*known.begin()) +
                          ", and no person is in both: give the same person the same number");
  }
}

}  // namespace KV::recordings
