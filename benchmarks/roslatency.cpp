#include "bridges/ros2/cyclonepeer.hpp"
#include "librecordings/rosbag2/bagwriter.hpp"
#include "support/childprocess.hpp"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/types.h>
#include <unistd.h>

/// Plays faces at the rate of a camera to `skeigiot ros` from another implementation of DDS, and prints how long its
/// answers took, and how much of a processor the node needs.
///
/// usage: skeigiot_ros_latency [PERSONS [SECONDS]]

namespace
{

constexpr int rate = 30;   // [Hz]
constexpr int domain = 0;  // where no test is
constexpr std::chrono::nanoseconds ofFrame(1'000'000'000 / rate);

using SteadyClock = std::chrono::steady_clock;

std::int64_t now()
{
  return std::chrono::nanoseconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::string faceOf(int person)
{
  return "f" + std::to_string(person);
}

std::string frameOf(int persons)
{
  std::vector<support::FrameMessage> frames;
  frames.reserve(static_cast<std::size_t>(persons));
  for (int person = 0; person < persons; ++person)
    frames.push_back(support::faceFrame(faceOf(person), {0.01 * person, 0., 1.5}));
  return support::tfMessage(frames);
}

/// Returns the processor time of a process so far [s].
double processorTimeOf(pid_t process)
{
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string name;
  std::getline(file, name, ')');  // of the program, which may have spaces
  std::string skipped;
  for (int i = 0; i < 11; ++i)
    file >> skipped;
  double user = 0.;
  double system = 0.;
  file >> user >> system;
  return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

/// Sends frames and keeps how long each answer took [s].
class Measurement
{
public:
  explicit Measurement(int persons) : _persons(persons), _frame(frameOf(persons))
  {
    _peer.write("/tf");
    for (int person = 0; person < persons; ++person)
      _peer.read("/humans/persons/" + faceOf(person) + "/engagement_status");
  }

  /// Returns whether each person has an answer.
  bool waitForAllPersons()
  {
    if (!_peer.waitForReaders())
      return false;
    constexpr int most = 20 * rate;
    for (int i = 0; i < most && _answered.size() < static_cast<std::size_t>(_persons); ++i)
      _playFrame(SteadyClock::now() + ofFrame);
    _delays.clear();
    return _answered.size() == static_cast<std::size_t>(_persons);
  }

  void play(int seconds)
  {
    SteadyClock::time_point next = SteadyClock::now();
    for (int i = 0; i < seconds * rate; ++i)
      _playFrame(next += ofFrame);
  }

  std::vector<double>& delays() { return _delays; }

private:
  void _playFrame(SteadyClock::time_point end)
  {
    _peer.send("/tf", _frame, now());
    while (SteadyClock::now() < end)
      _peer.waitFor(
          [this, looked = std::size_t{0}](const rostests::Received& answer) mutable {
            if (looked++ < _seen)
              return false;
            ++_seen;
            _answered.insert(answer.topic);
            _delays.push_back(1e-9 * static_cast<double>(now() - answer.stamp));
            return false;
          },
          std::max<std::int64_t>(0, std::chrono::nanoseconds(end - SteadyClock::now()).count()));
  }

  int _persons;
  std::string _frame;
  rostests::CyclonePeer _peer{domain};
  std::size_t _seen = 0;
  std::set<std::string> _answered;  // topics
  std::vector<double> _delays;
};

int measure(int persons, int seconds)
{
  Measurement measurement(persons);
  livetests::ChildProcess node({"ros", "--domain", std::to_string(domain), "--times", "source", "--hold", "0"});
  if (!measurement.waitForAllPersons())
  {
    std::fprintf(stderr, "the node does not answer\n");
    return 1;
  }
  const auto begin = SteadyClock::now();
  const double before = processorTimeOf(node.id());
  measurement.play(seconds);
  const double passed = std::chrono::duration<double>(SteadyClock::now() - begin).count();
  const double used = processorTimeOf(node.id()) - before;
  node.signal(SIGTERM);
  if (node.wait() != 0)
    return 1;

  std::vector<double>& delays = measurement.delays();
  std::sort(delays.begin(), delays.end());
  const auto delayAt = [&delays](double share) {
    return 1e3 * delays.at(static_cast<std::size_t>(share * static_cast<double>(delays.size() - 1)));
  };
  std::printf(
      "%d person(s), %d frames a second: %.0f answers a second, after %.2f ms (median), %.2f ms (99 %%); the "
      "node took %.1f %% of a processor\n",
      persons, rate, static_cast<double>(delays.size()) / passed, delayAt(0.5), delayAt(0.99), 1e2 * used / passed);
  return 0;
}

}  // namespace

int main(int argc, char** argv)
{
  try
  {
    const int persons = argc > 1 ? std::stoi(argv[1]) : 1;
    const int seconds = argc > 2 ? std::stoi(argv[2]) : 10;
    if (persons < 1 || seconds < 1)
      throw std::invalid_argument("usage: skeigiot_ros_latency [PERSONS [SECONDS]]");
    return measure(persons, seconds);
  }
  catch (const std::exception& error)
  {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
