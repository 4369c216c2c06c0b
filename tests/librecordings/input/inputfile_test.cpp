#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputfile.hpp>

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

TEST_F(InputFile, CountsLinesAndTellsWhetherTheLastOneEnded)
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

TEST_F(InputFile, RefusesAnEndlessLineAndGoesOnBehindIt)
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

TEST_F(InputFile, TellsHowFarItIs)
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
