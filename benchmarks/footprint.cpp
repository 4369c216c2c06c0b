/// Prints how much memory a person takes, how large the libraries are, and how long it takes to load them.
///
/// usage: skeigiot_footprint LOADLIBRARY LIBRARY...    the program of loadlibrary.cpp, and the libraries to load

#include "elfsize.hpp"
#include "fullobservation.hpp"
#include "loadtime.hpp"

#include <skeigiot/socialgraph.hpp>

#include <boost/chrono/duration.hpp>

#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

namespace
{

/// Bytes handed out by malloc, the overhead of each block included.
std::size_t bytesInUse()
{
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void writeRow(const std::string& name, double value, const std::string& unit)
{
  std::cout << std::left << std::setw(60) << name << std::right << std::setw(12) << std::fixed << std::setprecision(0)
            << value << ' ' << unit << '\n';
}

void writeMemoryOfIdlePersons(int count)
{
  const std::size_t before = bytesInUse();
  KV::SocialGraph graph;
  for (int id = 0; id < count; ++id)
    graph.add(id);
  const double bytes = static_cast<double>(bytesInUse() - before) / count;
  writeRow("memory of an idle person, one of " + std::to_string(count), bytes, "bytes");
}

/// Of a person with half a minute of reports by all sensors.
void writeMemoryOfAnObservedPerson(std::int64_t rate)
{
  constexpr std::int64_t seconds = 30;
  ko::ManualClock clock(benchmarks::epoch);
  const ko::ScopedClockSource scope(clock);

  const std::size_t before = bytesInUse();
  KV::SocialGraph graph;
  for (std::int64_t i = 0; i < seconds * rate; ++i)
  {
    clock.advance(boost::chrono::nanoseconds(1000000000 / rate));
    graph.updateOrCreate(1, [&clock](KV::Person& person) { person.update(benchmarks::fullObservation(clock.now())); });
  }
  const auto bytes = static_cast<double>(bytesInUse() - before);
  writeRow("memory of a person, all sensors at " + std::to_string(rate) + " Hz", bytes, "bytes");
}

std::string nameOf(const std::string& path)
{
  return std::filesystem::path(path).filename().string();
}

void writeSize(const std::string& library)
{
  const benchmarks::ElfSize size = benchmarks::elfSizeOf(library);
  const std::string name = nameOf(library);
  writeRow(name + ", code and constants", static_cast<double>(size.text), "bytes");
  writeRow(name + ", data", static_cast<double>(size.data), "bytes");
  writeRow(name + ", data that starts as zeros", static_cast<double>(size.zeros), "bytes");
  writeRow(name + ", file", static_cast<double>(size.file), "bytes");
  writeRow(name + ", file without symbols", static_cast<double>(size.stripped), "bytes");
}

void writeLoadTime(const std::string& name, const benchmarks::LoadTime& time)
{
  constexpr double microsecond = 1e-6;
  writeRow(name + ", processor", time.processor / microsecond, "us");
  writeRow(name + ", elapsed", time.elapsed / microsecond, "us");
}

/// The libraries of the language are loaded as well; a program in C++ has loaded them anyway.
void writeLoadTimes(const std::string& loadLibrary, std::vector<std::string> libraries)
{
  libraries.insert(libraries.begin(), "libstdc++.so.6");
  const std::vector<benchmarks::LoadTime> times = benchmarks::loadTimes(loadLibrary, libraries);
  writeLoadTime("empty program", times.front());
  for (std::size_t i = 0; i < libraries.size(); ++i)
    writeLoadTime("program that loads " + nameOf(libraries[i]), times[i + 1]);
}

void writeAll(const std::string& loadLibrary, const std::vector<std::string>& libraries)
{
  for (const int count : {1, 100, 10000})
    writeMemoryOfIdlePersons(count);
  for (const std::int64_t rate : {1, 10, 30, 60})
    writeMemoryOfAnObservedPerson(rate);
  for (const std::string& library : libraries)
    writeSize(library);
  writeLoadTimes(loadLibrary, libraries);
}

}  // namespace

int main(int argc, char** argv)
{
  if (argc < 3)
  {
    std::cerr << "usage: skeigiot_footprint LOADLIBRARY LIBRARY...\n";
    return 2;
  }
  try
  {
    writeAll(argv[1], {argv + 2, argv + argc});
    return 0;
  }
  catch (const std::exception& error)
  {
    std::cerr << "skeigiot_footprint: " << error.what() << '\n';
    return 1;
  }
}
