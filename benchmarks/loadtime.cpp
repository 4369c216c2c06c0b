#include "loadtime.hpp"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <stdexcept>

namespace benchmarks
{

namespace
{

constexpr int runs = 301;

double secondsOf(const timeval& time)
{
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// Runs the program with one argument, or without if that is empty.
LoadTime run(std::string program, std::string argument)
{
  char* const arguments[] = {program.data(), argument.empty() ? nullptr : argument.data(), nullptr};
  const auto start = std::chrono::steady_clock::now();
  pid_t process = 0;
  if (posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, environ) != 0)
    throw std::runtime_error("cannot start " + program);
  int status = 0;
  rusage usage{};
  if (wait4(process, &status, 0, &usage) != process || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw std::runtime_error(program + " fails with " + argument);

  LoadTime time;
  time.elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  time.processor = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
  return time;
}

double median(std::vector<LoadTime>& times, double LoadTime::*part)
{
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  const auto isLess = [part](const LoadTime& a, const LoadTime& b) { return a.*part < b.*part; };
  std::nth_element(times.begin(), middle, times.end(), isLess);
  return (*middle).*part;
}

}  // namespace

std::vector<LoadTime> loadTimes(const std::string& loadLibrary, const std::vector<std::string>& libraries)
{
  std::vector<std::string> arguments = {""};
  arguments.insert(arguments.end(), libraries.begin(), libraries.end());

  std::vector<std::vector<LoadTime>> times(arguments.size());
  for (int i = 0; i < runs; ++i)
    for (std::size_t argument = 0; argument < arguments.size(); ++argument)
      times[argument].push_back(run(loadLibrary, arguments[argument]));

  std::vector<LoadTime> medians;
  medians.reserve(times.size());
  for (std::vector<LoadTime>& ofArgument : times)
    medians.push_back({median(ofArgument, &LoadTime::processor), median(ofArgument, &LoadTime::elapsed)});
  return medians;
}

}  // namespace benchmarks
