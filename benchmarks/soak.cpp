/// Simulates visitors of a robot for hours or days, at accelerated time, and reports each hour how much memory is in
/// use and the cost of an update. Fails if either has grown at the end.
///
/// usage: skeigiot_soak HOURS [SEED]

#include "countedmemory.hpp"
#include "visitors.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/emotionrecorder.hpp>
#include <skeigiot/socialgraph.hpp>
#include <skeigiot/verdict.hpp>

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using benchmarks::bytesInUse;
using benchmarks::Visitors;

constexpr int places = 5;  // for visitors at the same time
constexpr int framesPerHour = 3600 * benchmarks::framesPerSecond;
constexpr int framesPerScope = 60 * benchmarks::framesPerSecond;

/// The measurements of one hour. Bytes are counted at its end, when everybody has left.
struct Hour
{
  std::size_t updates = 0;
  std::size_t visitors = 0;
  double microsecondsPerUpdate = 0.;  ///< the median of batches, which a busy machine disturbs least
  std::size_t mostBytes = 0;          ///< in use while people are there
  std::size_t bytes = 0;              ///< in use
  std::size_t residentBytes = 0;
};

std::size_t residentBytes()
{
  std::ifstream file("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

double medianOf(std::vector<double> numbers)
{
  if (numbers.empty())
    throw std::runtime_error("nothing was measured");
  const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
  std::nth_element(numbers.begin(), middle, numbers.end());
  return *middle;
}

/// A robot in a place with visitors: the objects that a mood service keeps for them.
class Robot
{
public:
  explicit Robot(unsigned int seed) : _clock(benchmarks::epoch), _scope(_clock), _visitors(seed, places)
  {
    _batches.reserve(framesPerHour);
  }

  Hour liveForAnHour()
  {
    Hour hour;
    const std::int32_t before = _greetings;
    _batches.clear();
    for (int frame = 0; frame < framesPerHour; ++frame)
    {
      _liveForAFrame(frame, hour);
      if (frame % framesPerScope == 0)
        hour.mostBytes = std::max(hour.mostBytes, bytesInUse());
    }
    hour.microsecondsPerUpdate = medianOf(_batches);
    hour.visitors = static_cast<std::size_t>(_greetings - before);
    hour.bytes = bytesInUse();
    hour.residentBytes = residentBytes();
    return hour;
  }

  /// How often each verdict was given.
  const std::map<std::string, std::size_t>& verdicts() const { return _verdicts; }

private:
  void _liveForAFrame(int frame, Hour& hour)
  {
    _visitors.beginFrame();
    if (frame == framesPerHour - 1)
      _visitors.closeTheDoors();
    if (frame % framesPerScope == 0)
      _startScope();
    for (const Visitors::Visitor& visitor : _visitors.present())
      _meet(visitor.id);
    _update(hour);
    _visitors.endFrame([this](const Visitors::Visitor& visitor) { _part(visitor.id); });
    if (frame % benchmarks::framesPerSecond == 0)
      _ambiance.updateAmbiance(0.04f);
    if (frame % framesPerScope == framesPerScope - 1)
      _stopScope();
    _clock.advance(benchmarks::frameTime);
  }

  void _meet(std::int32_t id)
  {
    if (_verdictOf.emplace(id, KV::Verdict()).second)
      ++_greetings;
  }

  void _part(std::int32_t id)
  {
    _graph.remove(id);
    const auto found = _verdictOf.find(id);
    ++_verdicts[found->second.word()];
    _verdictOf.erase(found);
  }

  // Observations are made beforehand, so that only the library's time is measured.
  void _update(Hour& hour)
  {
    const std::vector<Visitors::Visitor>& present = _visitors.present();
    if (present.empty())
      return;
    _observations.clear();
    for (std::size_t i = 0; i < present.size(); ++i)
      _observations.push_back(_visitors.observation(ko::SystemClock::now()));

    const auto before = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < present.size(); ++i)
      _graph.updateOrCreate(present[i].id, [&](KV::Person& person) { person.update(_observations[i]); });
    const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - before;
    _batches.push_back(taken.count() / static_cast<double>(present.size()));
    hour.updates += present.size();

    for (const Visitors::Visitor& visitor : present)
    {
      if (!_visitors.isSeen())
        _graph.update(visitor.id, [](KV::Person& person) { person.decreaseSinceNotSeen(); });
      _graph.read(visitor.id, [&](const KV::Person& person) {
        _recorder.update_notMutexed(person.personState);
        _verdictOf[visitor.id].add(person.personState);
      });
      _ambiance.incrementMovementDetected();
    }
  }

  void _startScope()
  {
    _recorder.startRecording("minute", -1);
    _recorder.startRecording("glance", 20);
  }

  void _stopScope()
  {
    for (const char* const scope : {"minute", "glance"})
      ++_verdicts[_recorder.stopRecording(scope).first];
  }

  ko::ManualClock _clock;
  ko::ScopedClockSource _scope;
  Visitors _visitors;
  KV::SocialGraph _graph;
  KV::AmbianceState _ambiance;
  KV::KVEmotionRecorder _recorder;
  std::map<std::int32_t, KV::Verdict> _verdictOf;
  // All words from the start, so that a rare one does not count as growth.
  std::map<std::string, std::size_t> _verdicts{{"positive", 0}, {"neutral", 0}, {"negative", 0}, {"unknown", 0}};
  std::vector<KV::PersonObservation> _observations;
  std::vector<double> _batches;  // [us] per update, one for each frame of the hour
  std::int32_t _greetings = 0;
};

void writeHeading()
{
  std::cout << "hour   updates  visitors  us/update  bytes, people there  bytes, all gone  resident KiB\n";
}

void write(std::size_t number, const Hour& hour)
{
  std::cout << std::setw(4) << number << std::setw(10) << hour.updates << std::setw(10) << hour.visitors
            << std::setw(11) << std::fixed << std::setprecision(2) << hour.microsecondsPerUpdate << std::setw(21)
            << hour.mostBytes << std::setw(17) << hour.bytes << std::setw(14) << hour.residentBytes / 1024 << std::endl;
}

double medianCost(const std::vector<Hour>& hours, std::size_t first, std::size_t last)
{
  std::vector<double> costs;
  for (std::size_t i = first; i < last; ++i)
    costs.push_back(hours[i].microsecondsPerUpdate);
  return medianOf(std::move(costs));
}

/// Compares the end with the start; the first hour is left out, since the process grows to its size in it.
bool hasStayed(const std::vector<Hour>& hours)
{
  constexpr std::size_t residentSlack = 1 << 20;  // [bytes] the allocator keeps freed memory
  constexpr double greatestRatio = 1.5;           // of costs: other programs run as well

  const Hour& start = hours[1];
  const Hour& end = hours.back();
  const std::size_t quarter = std::max<std::size_t>(1, (hours.size() - 1) / 4);
  const double ratio = medianCost(hours, hours.size() - quarter, hours.size()) / medianCost(hours, 1, 1 + quarter);
  std::cout << "\nbytes in use, all gone:  " << start.bytes << " at the start, " << end.bytes << " at the end\n"
            << "resident:                " << start.residentBytes / 1024 << " KiB at the start, "
            << end.residentBytes / 1024 << " KiB at the end\n"
            << "cost of an update:       the last quarter takes " << std::setprecision(3) << ratio
            << " times what the first one did\n";
  return end.bytes <= start.bytes && end.residentBytes <= start.residentBytes + residentSlack && ratio <= greatestRatio;
}

int run(std::size_t count, unsigned int seed)
{
  std::size_t warnings = 0;
  const ko::log::HandlerId handler = ko::log::addHandler([&warnings](const ko::log::Record&) { ++warnings; });
  std::vector<Hour> hours;
  hours.reserve(count);
  Robot robot(seed);
  std::cout << "seed " << seed << ", " << places << " places, " << benchmarks::framesPerSecond
            << " frames a second\n\n";
  writeHeading();
  for (std::size_t hour = 0; hour < count; ++hour)
  {
    hours.push_back(robot.liveForAnHour());
    write(hour + 1, hours.back());
  }
  ko::log::removeHandler(handler);

  const bool stayed = hasStayed(hours);
  std::cout << "verdicts:               ";
  for (const auto& [word, times] : robot.verdicts())
    std::cout << ' ' << times << ' ' << word;
  std::cout << "\nwarnings:                " << warnings << "\n\n"
            << (stayed && warnings == 0 ? "Nothing has grown." : "FAILED: see above.") << std::endl;
  return stayed && warnings == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
  try
  {
    const std::size_t hours = argc > 1 ? std::stoul(argv[1]) : 0;
    const unsigned long seed = argc > 2 ? std::stoul(argv[2]) : 20261121;
    if (hours < 2)
      throw std::invalid_argument("expected at least two hours, so that there is a start and an end");
    return run(hours, static_cast<unsigned int>(seed));
  }
  catch (const std::exception& error)
  {
    std::cerr << "skeigiot_soak: " << error.what() << "\nusage: skeigiot_soak HOURS [SEED]\n";
    return 2;
  }
}
