#include "librecordings/rosbag2/bagwriter.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

/// How fast bags are read, compared with plain reading of the same file.

namespace
{

constexpr std::int64_t begin = 1700000000000000000;  // [ns] since 1970
constexpr int frames = 20000;
constexpr int messagesOfFrame = 3;
constexpr double framesPerSecond = 30.;

struct Form
{
  const char* name;
  support::McapForm mcap;
};

const std::vector<Form>& forms()
{
  static const std::vector<Form> all = {{"SQLite", {}},
                                        {"MCAP", {"", "", true, 768 << 10U}},
                                        {"MCAP, lz4", {"", "lz4", true, 768 << 10U}},
                                        {"MCAP, zstd", {"", "zstd", true, 768 << 10U}},
                                        {"MCAP without chunks", {"", "", false, 0}}};
  return all;
}

/// One bag in all forms; removed at the end.
class Bags
{
public:
  Bags() : _folder(std::filesystem::temp_directory_path() / "skeigiot_bag_benchmark")
  {
    std::filesystem::create_directories(_folder);
    std::filesystem::remove(path(0));
    support::BagWriter bag(path(0), begin);
    for (int frame = 0; frame < frames; ++frame)
      _writeFrame(bag, frame / framesPerSecond);
    for (std::size_t form = 1; form < forms().size(); ++form)
      std::ofstream(path(form), std::ios::binary) << bag.inMcap(forms()[form].mcap);
  }
  Bags(const Bags&) = delete;
  Bags& operator=(const Bags&) = delete;
  ~Bags() { std::filesystem::remove_all(_folder); }

  std::string path(std::size_t form) const { return (_folder / ("bag" + std::to_string(form))).string(); }

private:
  static void _writeFrame(support::BagWriter& bag, double time)
  {
    bag.add(time, "/humans/faces/a/expression", support::expressionMessage("happy", 0.5f, 0.9f));
    bag.add(time + 0.001, "/tf", support::tfMessage({support::faceFrame("a", {0., 0., 2.}, time)}));
    bag.add(time + 0.002, "/humans/faces/tracked", support::idsMessage({"a"}));
  }

  std::filesystem::path _folder;
};

std::size_t readPlainly(const std::string& path)
{
  std::array<char, std::size_t{64} << 10U> buffer{};
  std::ifstream file(path, std::ios::binary);
  std::size_t bytes = 0;
  while (file.read(buffer.data(), buffer.size()) || file.gcount() > 0)
    bytes += static_cast<std::size_t>(file.gcount());
  return bytes;
}

/// [s] of plain reading, with the file in memory.
double secondsOfPlainReading(const std::string& path)
{
  constexpr int times = 20;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < times; ++i)
    benchmark::DoNotOptimize(readPlainly(path));
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / times;
}

void BM_BagReading(benchmark::State& state)
{
  static const Bags bags;
  const auto form = static_cast<std::size_t>(state.range(0));
  const std::string path = bags.path(form);
  const double plain = secondsOfPlainReading(path);
  double seconds = 0.;
  for (auto _ : state)
  {
    const auto start = std::chrono::steady_clock::now();
    const auto reader = KV::recordings::openRecording(path, "", KV::recordings::ReadingOptions());
    while (const auto step = reader->next())
      benchmark::DoNotOptimize(step->time);
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  state.SetLabel(forms()[form].name);
  state.SetItemsProcessed(state.iterations() * frames * messagesOfFrame);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
  state.counters["times_plain"] = seconds / static_cast<double>(state.iterations()) / plain;
}
BENCHMARK(BM_BagReading)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

}  // namespace
