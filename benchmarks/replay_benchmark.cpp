#include "fullobservation.hpp"

#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/session.hpp>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace
{

constexpr int rowsPerSecond = 30;
constexpr int rows = 30 * rowsPerSecond;

/// An OpenFace file of thirty seconds of one face, with the columns that are read and further ones up to the 538 of a
/// full export; removed at the end.
class FaceFile
{
public:
  FaceFile() : _path(std::filesystem::temp_directory_path() / "skeigiot_replay_benchmark.csv")
  {
    std::ofstream file(_path);
    file << "frame,face_id,timestamp,confidence,success,gaze_angle_x,gaze_angle_y,"
            "pose_Tx,pose_Ty,pose_Tz,pose_Rx,pose_Ry,pose_Rz";
    for (const char* unit : {"01", "02", "04", "05", "06", "07", "12", "15", "23", "25", "26"})
      file << ",AU" << unit << "_r";
    for (const char* axis : {"x", "y"})
      for (int point = 0; point < 68; ++point)
        file << ',' << axis << '_' << point;
    for (int other = 0; other < otherColumns; ++other)
      file << ",p_" << other;
    file << '\n';
    for (int row = 0; row < rows; ++row)
      _writeRow(file, row);
  }
  FaceFile(const FaceFile&) = delete;
  FaceFile& operator=(const FaceFile&) = delete;
  ~FaceFile() { std::filesystem::remove(_path); }

  std::string path() const { return _path.string(); }

private:
  static constexpr int otherColumns = 538 - 13 - 11 - 136;

  static void _writeRow(std::ofstream& file, int row)
  {
    const double wobble = row % 7 / 50.;
    file << row + 1 << ",0," << row / static_cast<double>(rowsPerSecond) << ",0.98,1," << wobble << ",0.02,"
         << "20.5,-30.2,900.7,0.05," << wobble << ",0.01";
    for (int unit = 0; unit < 11; ++unit)
      file << ",0.7" << unit;
    for (int point = 0; point < 136 + otherColumns; ++point)
      file << ',' << 300 + point << ".25";
    file << '\n';
  }

  std::filesystem::path _path;
};

/// A file of JSON Lines of thirty seconds of one face with all its readings and twelve points; removed at the end.
class JsonLinesFile
{
public:
  JsonLinesFile() : _path(std::filesystem::temp_directory_path() / "skeigiot_replay_benchmark.jsonl")
  {
    std::ofstream file(_path);
    KV::recordings::JsonLinesWriter writer(file);
    for (int row = 0; row < rows; ++row)
    {
      KV::recordings::Step step;
      step.time = benchmarks::epoch + row * boost::chrono::nanoseconds(1000000000 / rowsPerSecond);
      step.person = 1;
      step.observation = benchmarks::faceObservation(step.time);
      step.observation.facialPoints = benchmarks::fullObservation(step.time).facialPoints;
      writer.write(step);
    }
  }
  JsonLinesFile(const JsonLinesFile&) = delete;
  JsonLinesFile& operator=(const JsonLinesFile&) = delete;
  ~JsonLinesFile() { std::filesystem::remove(_path); }

  std::string path() const { return _path.string(); }

private:
  std::filesystem::path _path;
};

void countTime(benchmark::State& state)
{
  const double secondsOfFace = static_cast<double>(rows) / rowsPerSecond;
  state.counters["times_real_time"] = benchmark::Counter(secondsOfFace, benchmark::Counter::kIsIterationInvariantRate);
  state.SetItemsProcessed(state.iterations() * rows);
}

template <typename File>
void BM_ReplayReadingAlone(benchmark::State& state)
{
  const File file;
  for (auto _ : state)
  {
    const auto reader = KV::recordings::openRecording(file.path(), "", KV::recordings::ReadingOptions());
    while (const auto step = reader->next())
      benchmark::DoNotOptimize(step->time);
  }
  countTime(state);
}
BENCHMARK_TEMPLATE(BM_ReplayReadingAlone, FaceFile)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_ReplayReadingAlone, JsonLinesFile)->Unit(benchmark::kMillisecond);

template <typename File>
void BM_ReplayEndToEnd(benchmark::State& state)
{
  const File file;
  for (auto _ : state)
  {
    KV::session::PlayerOptions options;
    options.cycle = KV::session::Cycle::recorded();
    const KV::session::Player player(options);
    benchmark::DoNotOptimize(player.play(
        [&file] { return KV::recordings::openRecording(file.path(), "", KV::recordings::ReadingOptions()); }, {}));
  }
  countTime(state);
}
BENCHMARK_TEMPLATE(BM_ReplayEndToEnd, FaceFile)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_ReplayEndToEnd, JsonLinesFile)->Unit(benchmark::kMillisecond);

/// The cost without reading: the steps are in memory, and all thirteen sensors report in each of them.
void BM_ReplayAllSensorsFromMemory(benchmark::State& state)
{
  std::vector<KV::recordings::Step> entries(rows);
  for (int row = 0; row < rows; ++row)
  {
    KV::recordings::Step& entry = entries[static_cast<std::size_t>(row)];
    entry.time = benchmarks::epoch + row * boost::chrono::nanoseconds(1000000000 / rowsPerSecond);
    entry.person = 1;
    entry.observation = benchmarks::fullObservation(entry.time);
  }

  for (auto _ : state)
  {
    KV::session::Session session({}, {}, KV::session::Cycle::recorded());
    for (const KV::recordings::Step& entry : entries)
      session.play(entry);
    session.finish();
  }
  countTime(state);
}
BENCHMARK(BM_ReplayAllSensorsFromMemory)->Unit(benchmark::kMillisecond);

}  // namespace
