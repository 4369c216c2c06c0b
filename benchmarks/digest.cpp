/// Writes a fingerprint of every state after every update, to compare two builds: a build that was made faster must
/// write the same.
///
/// usage: skeigiot_digest                     of ten thousand random observations
///        skeigiot_digest FILE|FOLDER...      of all recordings in them; says on standard error what is not read
///
/// A line for each source: the fingerprint, the number of its states, and the name.

#include "digestline.hpp"
#include "statedigest.hpp"
#ifdef SKEIGIOT_READS_RECORDINGS
#include "recordingdigest.hpp"
#endif

#include <model/randomobservations.hpp>
#include <model/translation.hpp>

#include <skeigiot/person.hpp>

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace
{

constexpr std::uint64_t seed = 20200101;
constexpr std::int64_t observationsOfALife = 1000;
constexpr model::Nanoseconds start = 1577836800000 * model::millisecond;  // 2020-01-01T00:00:00Z

/// Runs random observations of one character, and digests the state after each.
template <typename Life>
void writeDigestOf(std::string_view name)
{
  Life life(seed);
  ko::ManualClock clock(model::toTimePoint(start));
  const ko::ScopedClockSource scope(clock);
  benchmarks::DigestLine line;
  KV::Person person;
  model::Nanoseconds now = start;
  for (std::int64_t observed = 0; observed < observationsOfALife;)
  {
    now += life.step();
    clock.set(model::toTimePoint(now));
    if (life.isSomebodyElse())
      person = KV::Person();
    if (life.isUnseen())
      person.decreaseSinceNotSeen();
    else
    {
      person.update(model::toLibrary(life.next(now)));
      ++observed;
    }
    line.add(person);
  }
  line.write(std::cout, "random/" + std::string(name));
}

void writeDigestsOfRandomObservations()
{
  writeDigestOf<model::SparseReadings>("sparse readings");
  writeDigestOf<model::ThirtyHertz>("thirty hertz");
  writeDigestOf<model::AllSensors>("all sensors");
  writeDigestOf<model::DisorderedTimes>("disordered times");
  writeDigestOf<model::SteppedClock>("stepped clock");
  writeDigestOf<model::FewSenses>("few senses");
  writeDigestOf<model::Boundaries>("boundaries");
  writeDigestOf<model::TiedScores>("tied scores");
  writeDigestOf<model::BrokenNumbers>("broken numbers");
  writeDigestOf<model::UnseenCycles>("unseen cycles");
}

int writeDigestsOfRecordings(const std::vector<std::string>& paths)
{
#ifdef SKEIGIOT_READS_RECORDINGS
  for (const std::string& path : paths)
    benchmarks::writeDigestsOfRecordings(path);
  return 0;
#else
  std::cerr << paths.front() << ": skipped, as this was built without the readers of recordings\n";
  return 1;
#endif
}

}  // namespace

int main(int argc, char** argv)
{
  ko::log::addHandler([](const ko::log::Record&) {});  // many observations are old here, so warnings are expected
  const std::vector<std::string> paths(argv + 1, argv + argc);
  if (!paths.empty())
    return writeDigestsOfRecordings(paths);
  writeDigestsOfRandomObservations();
  return 0;
}
