// The least possible cost of an update, and its actual cost.
//
// The behaviour of an update requires a reading of the clock per record and pruning, an error function per weight, and
// a text per force; records are kept in arrays and inserted at the front. The floor is the cost of these operations one
// by one in the same run: readings, error functions, texts and moved bytes, without the code between them.
//
// The plain model of the tests runs beside it and does the same work in the simplest way.

#include "steadyperson.hpp"

#include <model/model.hpp>
#include <sixdigits.hpp>

#include <ko/systemclock.hpp>

#include <boost/math/policies/policy.hpp>
#include <boost/math/special_functions/erf.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <string_view>
#include <vector>

namespace
{

using benchmarks::ClockKind;
using benchmarks::SteadyPerson;

/// CPU time of this thread.
double now()
{
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/// Returns the nanoseconds that one of `count` calls takes.
template <typename Call>
double timeOf(std::int64_t count, Call call)
{
  const double start = now();
  for (std::int64_t i = 0; i < count; ++i)
    call(i);
  return (now() - start) / static_cast<double>(count);
}

double median(std::vector<double> values)
{
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double timeOfReading()
{
  return timeOf(20000, [](std::int64_t) { benchmark::DoNotOptimize(ko::SystemClock::now()); });
}

/// The mean over the arguments that the ages of the readings give.
double timeOfErrorFunction(std::int64_t rate)
{
  using boost::math::policies::policy;
  using boost::math::policies::promote_double;

  std::vector<float> arguments;
  for (const auto& [reference, horizon] : {std::pair(3.f, 7.f), std::pair(1.f, 7.f), std::pair(1.f, 7.f),
                                           std::pair(4.f, 7.f), std::pair(4.f, 7.f), std::pair(3.f, 20.f)})
    for (float age = 0.f; age < horizon; age += 1.f / static_cast<float>(rate))
      arguments.push_back(std::min(2.f, 2.f / reference) * (reference - age));

  std::size_t next = 0;
  return timeOf(4000, [&](std::int64_t) {
    benchmark::DoNotOptimize(boost::math::erf(static_cast<double>(arguments[next]), policy<promote_double<false>>()));
    next = next + 1 == arguments.size() ? 0 : next + 1;
  });
}

char* put(char* place, std::string_view words)
{
  std::memcpy(place, words.data(), words.size());
  return place + words.size();
}

/// The cheapest way found to compose the text of a force.
double timeOfText()
{
  std::array<char, 128> text{};
  float weight = 65.f;
  return timeOf(4000, [&](std::int64_t i) {
    weight = weight > 1.f ? weight * 0.99f : 65.f;
    char* end = put(text.data(), "Applying valence force ");
    end = KV::writeSixDigits(end, weight);
    end = put(end, " towards ");
    end = KV::writeSixDigits(end, i % 2 == 0 ? 1.f : -1.f);
    end = put(end, " (Context emotion)");
    benchmark::DoNotOptimize(end);
    benchmark::ClobberMemory();
  });
}

/// The time to shift an array of so many bytes by one record.
double timeToMove(std::size_t bytes)
{
  constexpr std::size_t record = 64;
  static std::vector<char> array;
  array.resize(bytes + record);
  return timeOf(50, [bytes](std::int64_t) {
    std::memmove(array.data() + record, array.data(), bytes);
    benchmark::ClobberMemory();
  });
}

/// The report of the memories and the trace of the update have 28 numbers in all, and words: as much as 17 forces.
constexpr long forcesWorthOfReports = 17;

void BM_UpdateAgainstItsFloor(benchmark::State& state, ClockKind kind)
{
  const std::int64_t rate = state.range(0);
  SteadyPerson steady(kind, rate);
  const benchmarks::Work work = steady.countWork();

  std::vector<double> update, model, reading, errorFunction, text, moving;
  for (auto _ : state)
  {
    const benchmarks::UpdateTimes times = steady.timeUpdates();
    update.push_back(times.library);
    model.push_back(times.model);
    reading.push_back(timeOfReading());
    errorFunction.push_back(timeOfErrorFunction(rate));
    text.push_back(timeOfText());
    moving.push_back(timeToMove(work.bytesMoved));
    state.SetIterationTime(times.library * 1e-9);
  }

  const double floor = static_cast<double>(work.readings) * median(reading) +
                       static_cast<double>(work.errorFunctions) * median(errorFunction) +
                       static_cast<double>(work.forces + forcesWorthOfReports) * median(text) + median(moving);
  state.counters["update_us"] = median(update) / 1000.;
  state.counters["floor_us"] = floor / 1000.;
  state.counters["update/floor"] = median(update) / floor;
  state.counters["model/update"] = median(model) / median(update);
  state.counters["readings"] = static_cast<double>(work.readings);
  state.counters["reading_ns"] = median(reading);
  state.counters["erfs"] = static_cast<double>(work.errorFunctions);
  state.counters["erf_ns"] = median(errorFunction);
  state.counters["texts"] = static_cast<double>(work.forces + forcesWorthOfReports);
  state.counters["text_ns"] = median(text);
  state.counters["moved_kB"] = static_cast<double>(work.bytesMoved) / 1000.;
  state.counters["moving_us"] = median(moving) / 1000.;
}
BENCHMARK_CAPTURE(BM_UpdateAgainstItsFloor, manual_clock, ClockKind::Manual)
    ->Arg(1)
    ->Arg(10)
    ->Arg(30)
    ->Arg(60)
    ->Iterations(31)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_UpdateAgainstItsFloor, wall_clock, ClockKind::Wall)
    ->Arg(1)
    ->Arg(10)
    ->Arg(30)
    ->Arg(60)
    ->Iterations(31)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
