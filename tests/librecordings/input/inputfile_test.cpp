#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputfile.hpp>

#include <gmock/gmock.h>
#include <zstd.h>

#include <algorithm>
#include <fstream>

namespace
{
class InputFile : public ::testing::Test
{
protected:
  std::vector<std::string> linesOf(const std::string& path) const
  {
    KV::recordings::InputFile file(path);
    std::vector<std::string> lines;
    std::string_view line;
    while (file.readLine(line))
      lines.emplace_back(line);
    return lines;
  }

  std::string errorOf(const std::string& path) const
  {
    try
    {
      linesOf(path);
    }
    catch (const KV::recordings::Error& error)
    {
      return error.what();
    }
    return {};
  }

  support::TemporaryFolder folder;
};

TEST_F(InputFile, SplitsLinesWhateverTheirEnds)
{
  const std::vector<std::string> expected = {"a", "", "b", "c"};
  EXPECT_EQ(expected, linesOf(folder.write("f", "a\n\nb\r\nc")));
  EXPECT_EQ(expected, linesOf(folder.write("f", "a\n\r\nb\nc\n")));
}

TEST_F(InputFile, ReadsCompressedFilesAsTheyAre)
{
  const std::vector<std::string> expected = {"a", "b"};
  EXPECT_EQ(expected, linesOf(folder.writeCompressed("f.gz", "a\nb\n")));
}

std::string packedByZstd(const std::string& text)
{
  std::string packed(ZSTD_compressBound(text.size()), '\0');
  packed.resize(ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), 3));
  return packed;
}

TEST_F(InputFile, ReadsFilesCompressedByZstd)
{
  const std::vector<std::string> expected = {"a", "b", "c"};
  EXPECT_EQ(expected, linesOf(folder.write("f.zst", packedByZstd("a\nb\nc"))));
  EXPECT_EQ(expected, linesOf(folder.write("f.zst", packedByZstd("a\n") + packedByZstd("b\nc\n")))) << "two parts";
  EXPECT_EQ(expected, linesOf(folder.write("f.zst", packedByZstd("a\nb\nc\n") + std::string(600, '\0')))) << "padded";
  EXPECT_EQ(folder.path("f.zst") + ":3: other data follow the compressed data, at byte " +
                std::to_string(packedByZstd("a\nb\nc\n").size()) + ": the rest cannot be read",
            errorOf(folder.write("f.zst", packedByZstd("a\nb\nc\n") + "text")));
}

TEST_F(InputFile, ReadsLongFilesCompressedByZstd)
{
  std::string text;
  for (int i = 0; i < 300000; ++i)
    text += std::to_string(i % 97) + "\n";
  const std::string packed = packedByZstd(text);
  EXPECT_EQ(300000u, linesOf(folder.write("f.zst", packed)).size()) << "some of it waits behind the last packed byte";
  for (const std::size_t size : {packed.size() / 2, packed.size() - 1, std::size_t{20}, std::size_t{5}})
    EXPECT_THAT(errorOf(folder.write("f.zst", packed.substr(0, size))),
                testing::HasSubstr("the compressed data end too early: the file was cut"))
        << size;
}

TEST_F(InputFile, SaysThatDataCompressedByZstdAreDamaged)
{
  std::string packed = packedByZstd(std::string(100000, 'x') + "\n");
  packed[4] = '\xff';
  EXPECT_THAT(errorOf(folder.write("f.zst", packed)), testing::HasSubstr("the compressed data are damaged: "));
  const std::string window = "\x28\xB5\x2F\xFD" + std::string(1, '\0') + "\x88" + "\1\0\0";
  EXPECT_EQ(folder.path("f.zst") +
                ": the compressed data are damaged: they need more than 64 MiB of memory at once: if "
                "you trust them, unpack them yourself",
            errorOf(folder.write("f.zst", window)));
}

TEST_F(InputFile, SkipsAByteOrderMark)
{
  const std::vector<std::string> expected = {"a",
                                             "\xEF\xBB\xBF"
                                             "b"};
  EXPECT_EQ(expected, linesOf(folder.write("f",
                                           "\xEF\xBB\xBF"
                                           "a\n\xEF\xBB\xBF"
                                           "b\n")));
  EXPECT_EQ("a\nb", KV::recordings::InputFile::head(folder.write("f",
                                                                 "\xEF\xBB\xBF"
                                                                 "a\nb"),
                                                    100));
}

TEST_F(InputFile, CountsLinesAndReportsWhetherTheLastOneEnded)
{
  KV::recordings::InputFile file(folder.write("f", "a\nb"));
  std::string_view line;
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ(1u, file.lineNumber());
  EXPECT_TRUE(file.lineEnded());
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ(2u, file.lineNumber());
  EXPECT_FALSE(file.lineEnded());
  EXPECT_FALSE(file.readLine(line));
}

TEST_F(InputFile, KeepsLinesLongerThanItsBuffer)
{
  const std::string text(1000000, 'x');
  const std::vector<std::string> expected = {"a", text, "b"};
  EXPECT_EQ(expected, linesOf(folder.write("f", "a\n" + text + "\nb")));
}

TEST_F(InputFile, RefusesAnEndlessLineAndContinuesAfterIt)
{
  const std::string longest(KV::recordings::InputFile::longestLine, 'x');
  KV::recordings::InputFile file(folder.write("f", longest + "\n" + longest + longest + "\nb\n"));
  std::string_view line;
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ(longest.size(), line.size());
  EXPECT_THROW(file.readLine(line), KV::recordings::BadLine);
  EXPECT_EQ(2u, file.lineNumber());
  ASSERT_TRUE(file.readLine(line));
  EXPECT_EQ("b", line);
  EXPECT_EQ(3u, file.lineNumber());
}

TEST_F(InputFile, ReportsHowFarItIs)
{
  std::string text;
  for (int i = 0; i < 100000; ++i)
    text += std::to_string(i) + "\n";
  for (const std::string& path : {folder.write("f", text), folder.writeCompressed("f.gz", text)})
  {
    KV::recordings::InputFile file(path);
    std::string_view line;
    double last = 0.0;
    while (file.readLine(line))
    {
      EXPECT_GE(file.progress(), last);
      last = file.progress();
    }
    EXPECT_DOUBLE_EQ(1.0, file.progress());
  }
}

TEST_F(InputFile, IsReadWholeAtMostThoughItGrows)
{
  const std::string text(1U << 20U, '\n');
  const std::string path = folder.write("f", text);
  KV::recordings::InputFile file(path);
  std::string_view line;
  ASSERT_TRUE(file.readLine(line));
  EXPECT_LT(file.progress(), 1.0);
  std::ofstream(path, std::ios::app) << text;
  std::size_t lines = 1;
  double greatest = 0.0;
  for (; file.readLine(line); ++lines)
    greatest = std::max(greatest, file.progress());
  EXPECT_EQ(2 * text.size(), lines);
  EXPECT_EQ(1.0, greatest);
}

TEST_F(InputFile, SaysWhyItCannotBeOpened)
{
  EXPECT_EQ(folder.path("none") + ": there is no such file", errorOf(folder.path("none")));
  EXPECT_EQ(folder.path() + ": is a folder, expected a file", errorOf(folder.path()));
}

TEST_F(InputFile, SaysThatCompressedDataAreCut)
{
  std::string text;
  for (int i = 0; i < 100000; ++i)
    text += std::to_string(i * 7919) + "\n";
  const std::string path = folder.writeCompressed("f.gz", text);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
  EXPECT_NE(std::string::npos, errorOf(path).find("the compressed data end too early: the file was cut"));

  std::size_t linesBefore = 0;
  KV::recordings::InputFile file(path);
  std::string_view line;
  try
  {
    while (file.readLine(line))
      ++linesBefore;
  }
  catch (const KV::recordings::Error&)
  {}
  EXPECT_GT(linesBefore, 30000u) << "what stands before the cut is lost";
}

TEST_F(InputFile, SaysThatCompressedDataAreDamaged)
{
  const std::string path = folder.writeCompressed("f.gz", std::string(100000, 'x') + "\n");
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(-8, std::ios::end);  // the check sum
  file << "\x01\x02\x03\x04";
  file.close();
  EXPECT_NE(std::string::npos, errorOf(path).find("the compressed data are damaged"));
}

}  // namespace
