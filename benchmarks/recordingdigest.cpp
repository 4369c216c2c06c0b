#include "recordingdigest.hpp"

#include "digestline.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/socialgraph.hpp>

#include <ko/systemclock.hpp>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace benchmarks
{

namespace
{

namespace fs = std::filesystem;

/// The files under the path in the order of their names, for any order of the directory.
std::vector<fs::path> filesUnder(const fs::path& path)
{
  if (!fs::is_directory(path))
    return {path};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path))
    if (entry.is_regular_file())
      files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

/// Returns the next step that can be used, or nothing at the end.
boost::optional<KV::recordings::Step> nextUsable(KV::recordings::Reader& reader)
{
  for (;;)
    try
    {
      return reader.next();
    }
    catch (const KV::recordings::BadLine&)
    {
      // the next call reads the line after it
    }
}

DigestLine digestOf(KV::recordings::Reader& reader)
{
  ko::ManualClock clock{ko::SystemClock::time_point()};
  const ko::ScopedClockSource scope(clock);
  KV::SocialGraph graph;
  DigestLine line;
  while (const auto step = nextUsable(reader))
  {
    clock.set(step->time);
    if (!step->person)
      continue;
    if (step->seen)
      graph.updateOrCreate(*step->person, [&](KV::Person& person) {
        person.update(step->observation);
        line.add(person);
      });
    else
      graph.update(*step->person, [&](KV::Person& person) {
        person.decreaseSinceNotSeen();
        line.add(person);
      });
  }
  return line;
}

}  // namespace

void writeDigestsOfRecordings(const fs::path& path)
{
  if (!fs::exists(path))
  {
    std::cerr << path.string() << ": skipped, as it is not there\n";
    return;
  }
  for (const fs::path& file : filesUnder(path))
    try
    {
      const auto reader = KV::recordings::openRecording(file.string(), "", KV::recordings::ReadingOptions());
      const std::string name = file == path ? file.filename().string() : file.lexically_relative(path).string();
      digestOf(*reader).write(std::cout, name);
    }
    catch (const KV::recordings::Error& error)
    {
      std::cerr << error.what() << ": skipped\n";
    }
}

}  // namespace benchmarks
