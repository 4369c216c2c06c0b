#include "librecordings/limitedchild.hpp"
#include "librecordings/support.hpp"

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/labels.hpp>

#include <gmock/gmock.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace
{
using namespace KV::recordings;
using testing::HasSubstr;
using testing::SizeIs;

constexpr std::size_t enoughMemory = 256 * limits::mebibyte;  // of address space
constexpr std::size_t anyFile = 1024 * limits::mebibyte;

class InputLimits : public support::RecordingTest
{
protected:
  /// Reads a recording in a process of its own with little memory, and returns its error.
  std::string errorInLittleMemory(const std::string& text) const
  {
    const std::string path = folder.write("recording", text);
    const auto isRefused = [&path] {
      const support::Contents contents = support::contentsOf(path);
      return !contents.fatal.empty() || !contents.badLines.empty();
    };
    EXPECT_EXIT(support::runLimited(enoughMemory, anyFile, isRefused), testing::ExitedWithCode(0), "");
    return errorOf(text);
  }

  std::string errorOfLabels(const std::string& text) const
  {
    const std::string path = folder.write("labels", text);
    const auto messageOf = [&path]() -> std::string {
      try
      {
        readLabels(path);
      }
      catch (const Error& error)
      {
        return error.what();
      }
      return "";
    };
    EXPECT_EXIT(support::runLimited(enoughMemory, anyFile, [&] { return !messageOf().empty(); }),
                testing::ExitedWithCode(0), "");
    const std::string message = messageOf();
    return message.substr(path.size());
  }
};

TEST_F(InputLimits, RefuseAHeaderOfMillionsOfColumns)
{
  const std::string header = "frame,AU12_r" + std::string(limits::longestLine - 100, ',');
  EXPECT_EQ("1: has more than 10000 fields: this is no row of a recording", errorInLittleMemory(header + "\n1,2\n"));
  std::string quoted = "\"frame\",\"AU12_r\"";
  for (int i = 0; i < 1'000'000; ++i)
    quoted += ",\"\"";
  EXPECT_EQ("1: has more than 10000 fields: this is no row of a recording", errorInLittleMemory(quoted + "\n1,2\n"));
  EXPECT_NE("", errorInLittleMemory("frame;AU12_r" + std::string(limits::longestLine - 100, ';') + "\n1,2\n"));
}

TEST_F(InputLimits, RefuseARowOfMillionsOfFields)
{
  const std::string row = "2" + std::string(limits::longestLine - 100, ',');
  const std::string text = "frame,AU12_r\n1,1\n" + row + "\n3,3\n";
  EXPECT_EQ("3: has more than 10000 fields: this is no row of a recording", errorInLittleMemory(text));
  EXPECT_THAT(read(text).entries, SizeIs(2)) << "the rows around it are read";
}

TEST_F(InputLimits, TakeTablesWithAsManyColumnsAsAllowed)
{
  std::string header = "frame,AU12_r";
  std::string row = "1,2";
  for (std::size_t i = 2; i < limits::mostFields; ++i)
  {
    header += ",c" + std::to_string(i);
    row += ",0";
  }
  EXPECT_THAT(read(header + "\n" + row + "\n").entries, SizeIs(1));
}

TEST_F(InputLimits, RefuseAnObjectOfMillionsOfParts)
{
  std::string parts = "[";
  while (parts.size() < limits::longestLine - 1000)
    parts += "[],";
  const std::string frame = R"({"timestamp_ms":0,"face_blendshapes":[]})";
  EXPECT_EQ("2: has more than 1000000 parts: this is no result for a frame",
            errorInLittleMemory(frame + "\n" + R"({"timestamp_ms":1,"face_blendshapes":)" + parts + "[]]}\n"));
}

TEST_F(InputLimits, ShortenNamesInMessages)
{
  const std::string name(5'000'000, 'n');
  const std::string shown = std::string(40, 'n') + "...";
  for (const std::string& line :
       {"{\"time\":1000,\"" + name + "\":1}", "{\"time\":1000,\"" + name + "\":1,\"" + name + "\":1}",
        "{\"time\":1000,\"person\":1,\"observation\":{\"" + name + "\":1}}"})
  {
    const std::string error = errorOf(line + "\n");
    EXPECT_THAT(error, HasSubstr(shown));
    EXPECT_LT(error.size(), 1000u);
  }
  for (const std::string& table :
       {"time,person," + name + "\n0,1,2\n", "time,person,reading,value\n0,1," + name + ",2\n",
        "time,person,reading,value,component\n0,1,smile,2," + name + "\n", "frame,AU12_r\n1," + name + "\n"})
    EXPECT_LT(errorOf(table).size(), 1000u);
}

TEST_F(InputLimits, RefuseANulThatWouldHideWhatFollows)
{
  const std::string nul(1, '\0');
  const std::string line = R"({"time":1000,"person":1})";
  EXPECT_EQ("1: expected JSON, found a NUL at column 25", errorOf(line + nul + R"({"person":2} junk)" + "\n"));
  EXPECT_EQ("1: expected JSON, found a NUL at column 25", errorOf(line + nul + "\n"));
  EXPECT_EQ("2: expected JSON, found a NUL at column 1", errorOf(line + "\n" + nul + line + "\n"));

  const std::string frame = R"({"timestamp_ms":0,"face_blendshapes":[]})";
  EXPECT_THAT(errorOf(frame + "\n" + frame.substr(0, 17) + nul + frame.substr(17) + "\n"),
              HasSubstr("expected JSON, found a NUL at column 18"));

  ReadingOptions options;
  options.mapping = folder.write("mapping", "{}" + nul + "{");
  EXPECT_EQ(options.mapping + ": expected JSON, found a NUL at column 3", errorOf("frame,AU12_r\n1,1\n", options));
}

TEST_F(InputLimits, RefuseLabelsThatAreTooLarge)
{
  EXPECT_EQ(": is larger than 32 MiB: this is not a file of labels",
            errorOfLabels(std::string(limits::largestLabels, ' ') + "start,end,value\n"));
  EXPECT_EQ(":2: has more than 1000000 fields: this is not a file of labels",
            errorOfLabels("start,end,value\n" + std::string(limits::mostFieldsOfLabels, ',')));
}

/// Returns the names of the constants of the headers.
std::vector<std::string> namesOfLimits()
{
  std::string text;
  for (const char* header : {"inputlimits.hpp", "signallimits.hpp"})
  {
    std::ifstream file(SKEIGIOT_SOURCE_DIR "/librecordings/include/skeigiot/recordings/" + std::string(header));
    text.append(std::istreambuf_iterator<char>(file), {});
  }
  const std::regex constant("constexpr [a-z_:]+ ([A-Za-z]+) =");
  std::vector<std::string> names;
  for (auto match = std::sregex_iterator(text.begin(), text.end(), constant); match != std::sregex_iterator(); ++match)
    names.push_back((*match)[1]);
  return names;
}

TEST(SecurityPage, ListsEveryLimit)
{
  std::ifstream file(SKEIGIOT_SOURCE_DIR "/SECURITY.md");
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  const std::vector<std::string> names = namesOfLimits();
  EXPECT_GT(names.size(), 10u);
  for (const std::string& name : names)
    EXPECT_TRUE(name == "mebibyte" || page.find("`" + name + "`") != std::string::npos) << name;
}

}  // namespace
