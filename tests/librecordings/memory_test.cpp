#include "librecordings/support.hpp"

#include <sys/resource.h>

namespace
{
// [MiB] the greatest memory of this process so far.
double peakMemory()
{
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

// A table of 3000 columns, of which two are read, as large as this.
std::string writeWideTable(const support::TemporaryFolder& folder, std::size_t bytes)
{
  std::string header = "frame,AU12_r";
  std::string rest;
  for (int i = 0; i < 3000; ++i)
  {
    header += ",other_" + std::to_string(i);
    rest += "," + std::to_string(i) + ".125";
  }
  std::ofstream file(folder.path("wide.csv"), std::ios::binary);
  file << header << "\n";
  int frame = 0;
  for (std::size_t written = 0; written < bytes; written += rest.size())
    file << ++frame << ",2.5" << rest << "\n";
  return folder.path("wide.csv");
}

TEST(ReadingMemory, DoesNotGrowWithTheFile)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers keep memory that was given back";
#endif
  const support::TemporaryFolder folder;
  const std::string path = writeWideTable(folder, std::size_t{100} << 20U);

  const double before = peakMemory();
  const auto reader = KV::recordings::openRecording(path, "", {});
  std::size_t entries = 0;
  while (reader->next())
    ++entries;
  const double growth = peakMemory() - before;

  EXPECT_GT(entries, 4000u);
  EXPECT_LT(growth, 10.0) << "[MiB] for a file of 100 MiB";
}

}  // namespace
