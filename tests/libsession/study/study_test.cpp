#include <skeigiot/session/study.hpp>

#include "support/tablename.hpp"
#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/boundary.hpp>

#include <gmock/gmock.h>

#include <filesystem>
#include <ostream>
#include <string>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
namespace session = KV::session;

const char* const head = "[study]\nversion = 1\n";
const char* const files = "[[files]]\npattern = \"{participant}/{condition}/face.csv\"\n";

session::Study read(const TemporaryFolder& folder, const std::string& text)
{
  return session::readStudy(folder.write("study.toml", text));
}

/// Returns the error without the folder.
std::string errorOf(const std::string& text)
{
  const TemporaryFolder folder;
  try
  {
    read(folder, text);
  }
  catch (const KV::recordings::Error& error)
  {
    const std::string message = error.what();
    const std::string path = folder.path("");
    return message.rfind(path, 0) == 0 ? message.substr(path.size()) : message;
  }
  return "no error";
}

TEST(Study, ReadsAllFields)
{
  const TemporaryFolder folder;
  const session::Study study = read(folder, R"([study]
version = 1
name = "greetings"
minimum-length = 10
greatest-difference = 0.5

[[files]]
pattern = "{participant}/{condition}/face.csv"

[[files]]
pattern = "{participant}/{condition}/voice.csv"
offset = -0.25
optional = true

[[labels]]
pattern = "{participant}/{condition}/coding.eaf"
tier = "phases"

[[persons]]
number = 1
role = "child"

[[persons]]
name = "anna"
role = "parent"
participant = "a7"
session = "p01/hello"

[[scopes]]
name = "greeting"
from = 1
to = 12.5

[[scopes]]
name = "rest"
session = "p01/hello"

[[sessions]]
name = "p03/hello"
condition = "goodbye"
files = ["a.csv", {path = "b.csv", offset = 0.5}]
labels = [{path = "c.eaf", tier = "t"}]

[[sessions]]
name = "p04/hello"
left-out = "the camera fell"

[results]
updates = true

[options]
fps = 29.97
cycle = "recorded"
mirrored = true
camera-height = 1.2
mapping = "mine.json"
boundary-positive = 0.3
format = "openface"
min-confidence = 0.25
au-full-scale = 4
)");
  EXPECT_EQ("greetings", study.name);
  EXPECT_EQ("openface", study.format);
  EXPECT_EQ(0.25F, study.reading.minimalConfidence);
  EXPECT_EQ(4.F, study.reading.actionUnitFullScale);
  EXPECT_EQ(folder.path("mine.json"), study.reading.mapping);
  EXPECT_EQ(10., study.minimalLength);
  EXPECT_EQ(0.5, study.greatestDifference);
  ASSERT_EQ(2U, study.files.size());
  EXPECT_EQ("{participant}/{condition}/voice.csv", study.files[1].pattern);
  EXPECT_EQ(-250000000, study.files[1].offset.count());
  EXPECT_FALSE(study.files[0].isOptional);
  EXPECT_TRUE(study.files[1].isOptional);
  ASSERT_EQ(1U, study.labels.size());
  EXPECT_EQ("phases", study.labels[0].tier);
  ASSERT_EQ(2U, study.persons.size());
  EXPECT_EQ(1, study.persons[0].number.value_or(0));
  EXPECT_EQ("anna", study.persons[1].name);
  EXPECT_EQ("a7", study.persons[1].participant);
  EXPECT_EQ("p01/hello", study.persons[1].session);
  ASSERT_EQ(2U, study.scopes.size());
  EXPECT_EQ(12500000000, study.scopes[0].span.to.value_or(session::Duration(0)).count());
  EXPECT_FALSE(study.scopes[1].span.to);
  ASSERT_EQ(2U, study.sessions.size());
  EXPECT_EQ("goodbye", study.sessions[0].condition.value_or(""));
  EXPECT_FALSE(study.sessions[0].participant);
  ASSERT_EQ(2U, study.sessions[0].files.size());
  EXPECT_EQ("b.csv", study.sessions[0].files[1].path);
  EXPECT_EQ(500000000, study.sessions[0].files[1].offset.count());
  EXPECT_EQ("t", study.sessions[0].labels.at(0).tier);
  EXPECT_EQ("the camera fell", study.sessions[1].leftOut);
  EXPECT_TRUE(study.keepsUpdates);
  EXPECT_FALSE(study.keepsForces);
  EXPECT_EQ(29.97, study.reading.framesPerSecond.value_or(0.));
  EXPECT_FALSE(study.cycle.hertz);
  EXPECT_TRUE(study.reading.mirrored);
  EXPECT_EQ(0.3F, study.boundaries.at("boundary-positive"));
  EXPECT_EQ("29.97", study.options.at("fps"));
  EXPECT_EQ("true", study.options.at("mirrored"));
  EXPECT_EQ("fps = ", study.reading.rateName) << "advice of a warning, as users write it";
  EXPECT_EQ("mapping = ", study.reading.mappingName);
}

TEST(Study, LeavesTheBoundariesOfTheLibraryAsTheyAre)
{
  const float before = session::boundaries().front().get();
  const TemporaryFolder folder;
  read(folder, head + std::string(files) + "[options]\n" + session::boundaries().front().option + " = 0.31\n");
  EXPECT_EQ(before, session::boundaries().front().get());
}

TEST(Study, HasTheNameOfItsFolderIfTheFileHasNoName)
{
  const TemporaryFolder folder;
  EXPECT_EQ(std::filesystem::path(folder.path("study.toml")).parent_path().filename().string(),
            read(folder, head + std::string(files)).name);
}

TEST(Study, IsThatOfTheCurrentFolderIfItsPathHasNone)
{
  const TemporaryFolder folder;
  folder.write("study.toml", std::string(head) + files);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path(""));
  const session::Study study = session::readStudy("study.toml");
  std::filesystem::current_path(before);
  EXPECT_EQ("study.toml", study.path);
  EXPECT_EQ(".", study.folder);
  EXPECT_EQ(std::filesystem::path(folder.path("")).parent_path().filename().string(), study.name);
}

TEST(Study, IsRefusedWithMoreThan64MebibytesBeforeItIsRead)
{
  const TemporaryFolder folder;
  const std::string path = folder.write("study.toml", std::string(head) + files);
  std::filesystem::resize_file(path, 64 * 1024 * 1024 + 1);
  EXPECT_EQ(path + ": is larger than 64 MiB, too large for a study file",
            support::textThrownBy<KV::recordings::Error>([&path] { session::readStudy(path); }));
}

TEST(Study, SaysThatAFileIsMissing)
{
  const TemporaryFolder folder;
  try
  {
    session::readStudy(folder.path("study.toml"));
    FAIL() << "there is no such file";
  }
  catch (const KV::recordings::Error& error)
  {
    EXPECT_EQ(folder.path("study.toml") + ": cannot be read: No such file or directory", std::string(error.what()));
  }
}

struct BadStudy
{
  const char* name;
  const char* text;  ///< after the head
  const char* error;
};

std::ostream& operator<<(std::ostream& stream, const BadStudy& one)
{
  return stream << one.name;
}

class BadStudyFile : public ::testing::TestWithParam<BadStudy>
{};

TEST_P(BadStudyFile, IsRefusedWithLineAndField)
{
  EXPECT_THAT(errorOf(head + std::string(GetParam().text)), HasSubstr(GetParam().error));
}

INSTANTIATE_TEST_SUITE_P(
    Of, BadStudyFile,
    ::testing::Values(
        BadStudy{"NoToml", "name = ", "study.toml:3: is not TOML: "},
        BadStudy{"ANameThatBeginsWithNoLetter", "[[!files]]\n",
                 "study.toml:3: is not TOML: Error while parsing key: expected bare key starting character"},
        BadStudy{"ALetterWhereABlankMayBe", "name \xEF\xBB\xAF = 1\n", "study.toml:3: is not TOML: "},
        BadStudy{"NoFiles", "", "study.toml: files: there is no [[files]] with a pattern, and no [[sessions]]"},
        BadStudy{"UnknownTable", "[option]\n",
                 "study.toml:3: option: is not known here; expected files, labels, options"},
        BadStudy{"UnknownField", "[[files]]\npatern = \"a\"\n",
                 "study.toml:4: files.patern: is not known here; expected offset, optional, pattern"},
        BadStudy{"NoPattern", "[[files]]\noptional = true\n", "study.toml:3: files.pattern: is missing"},
        BadStudy{"NumberAsPattern", "[[files]]\npattern = 5\n",
                 "study.toml:4: files.pattern: expected a text in quotes"},
        BadStudy{"EmptyPattern", "[[files]]\npattern = \"\"\n", "files.pattern: expected a text in quotes"},
        BadStudy{"AbsolutePattern", "[[files]]\npattern = \"/a\"\n", "relative to the folder of the study file"},
        BadStudy{"OpenPlaceholder", "[[files]]\npattern = \"{a\"\n", "expected placeholders such as {participant}"},
        BadStudy{"EmptyPlaceholder", "[[files]]\npattern = \"{}\"\n", "expected placeholders such as {participant}"},
        BadStudy{"PlaceholdersSideBySide", "[[files]]\npattern = \"{a}{b}\"\n",
                 "two placeholders need text between them"},
        BadStudy{"SignInPlaceholder", "[[files]]\npattern = \"{a-b}\"\n", "letters, digits and underscores only"},
        BadStudy{"ScopeAsPlaceholder", "[[files]]\npattern = \"{participant}/{scope}\"\n",
                 "study.toml:4: files.pattern: a placeholder cannot be named scope, because scopes are the time spans "
                 "of a session, found '{participant}/{scope}'"},
        BadStudy{"OffsetOfCenturies", "[[files]]\npattern = \"a\"\noffset = 5e9\n",
                 "study.toml:5: files.offset: expected seconds from -4e9 to 4e9"},
        BadStudy{"OffsetAsText", "[[files]]\npattern = \"a\"\noffset = \"1\"\n", "files.offset: expected a number"},
        BadStudy{"OffsetWithoutEnd", "[[files]]\npattern = \"a\"\noffset = inf\n", "files.offset: expected a number"},
        BadStudy{"FlagAsText", "[[files]]\npattern = \"a\"\noptional = \"yes\"\n",
                 "files.optional: expected true or false"},
        BadStudy{"OneTableOfFiles", "[files]\npattern = \"a\"\n",
                 "files: is one table for each item: begin each with [[files]]"},
        BadStudy{"NobodyAsPerson", "[[persons]]\nrole = \"child\"\n",
                 "persons.number: expected either the number or the name"},
        BadStudy{"PersonTwice", "[[persons]]\nnumber = 1\nname = \"a\"\n", "expected either the number or the name"},
        BadStudy{"HugeNumber", "[[persons]]\nnumber = 3000000000\n", "persons.number: expected the number of a person"},
        BadStudy{"ScopeBackwards", "[[scopes]]\nname = \"a\"\nfrom = 2\nto = 1\n",
                 "study.toml:6: scopes.to: a scope does not end"},
        BadStudy{"SessionTwice", "[[sessions]]\nname = \"a\"\nfiles = [\"x\"]\n[[sessions]]\nname = \"a\"\n",
                 "study.toml:7: sessions.name: the session 'a' is listed twice"},
        BadStudy{"FilesAsText", "[[sessions]]\nname = \"a\"\nfiles = \"x\"\n",
                 "sessions.files: expected a list of paths"},
        BadStudy{"NoFileInSession", "[[sessions]]\nname = \"a\"\nfiles = []\n",
                 "sessions.files: expected a list of paths"},
        BadStudy{"NumberAsFile", "[[sessions]]\nname = \"a\"\nfiles = [1]\n",
                 "sessions.files: expected a path, or a table such as"},
        BadStudy{"UnknownOption", "[[files]]\npattern = \"a\"\n[options]\nfsp = 3\n",
                 "study.toml:6: options.fsp: is not an option; expected one of au-full-scale, boundary-"},
        BadStudy{"BadOption", "[[files]]\npattern = \"a\"\n[options]\nfps = 0\n",
                 "options.fps: expected a number above 0, found '0'"},
        BadStudy{"OptionAsList", "[[files]]\npattern = \"a\"\n[options]\nfps = []\n",
                 "options.fps: expected a text, a number, true or false"},
        BadStudy{"BadFlag", "[[files]]\npattern = \"a\"\n[options]\nmirrored = 1\n",
                 "options.mirrored: expected true or false"},
        BadStudy{"BadFormat", "[[files]]\npattern = \"a\"\n[options]\nformat = \"xml\"\n",
                 "options.format: expected one of livelink"},
        BadStudy{"BadCycle", "[[files]]\npattern = \"a\"\n[options]\ncycle = 0\n",
                 "options.cycle: expected recorded or a number"},
        BadStudy{"BadBoundary", "[[files]]\npattern = \"a\"\n[options]\nboundary-positive = 7\n",
                 "options.boundary-positive: 7 does not"}),
    support::RowName());

TEST(Study, IsRefusedWithMoreLevelsThanTheStackHolds)
{
  const auto named = [](int dots) {
    std::string name = "a";
    for (int i = 0; i < dots; ++i)
      name += ".a";
    return head + name + " = 1\n" + files;
  };
  EXPECT_EQ("study.toml:3: has more than 200 dots in one line: divide the line", errorOf(named(3'000'000)));
  EXPECT_EQ("study.toml:3: has more than 200 dots in one line: divide the line", errorOf(named(201)));
  EXPECT_THAT(errorOf(named(200)), HasSubstr("study.toml:3: study.a: is not known here"));
  EXPECT_THAT(errorOf(head + ("a = " + std::string(100'000, '[')) + "\n"), HasSubstr("study.toml:3: is not TOML: "));
}

TEST(Study, IsRefusedWithAPatternThatIsTooLong)
{
  EXPECT_THAT(errorOf(std::string(head) + "[[files]]\npattern = \"" + std::string(4097, 'a') + "\"\n"),
              HasSubstr("study.toml:4: files.pattern: a pattern has at most 4096 bytes, found 'aaa"));
}

TEST(Study, IsRefusedWithTooManyPatterns)
{
  std::string many = head;
  for (int i = 0; i < 1001; ++i)
    many += "[[files]]\npattern = \"{p}/" + std::to_string(i) + "\"\n";
  EXPECT_EQ("study.toml: files: there are more than 1000 patterns of files and labels", errorOf(many));
}

TEST(Study, NeedsTablesForItsParts)
{
  EXPECT_THAT(errorOf("files = [1]\n" + std::string(head)),
              HasSubstr("study.toml:1: files: expected a table: begin each with [[files]]"));
  EXPECT_THAT(errorOf("options = 3\n" + std::string(head) + files),
              HasSubstr("study.toml:1: options: expected a table: begin it with [options]"));
}

TEST(Study, NeedsItsVersion)
{
  EXPECT_EQ("study.toml:1: study: there is no table [study] with version = 1: is this a study file?", errorOf(files));
  EXPECT_THAT(errorOf("[study]\nversion = 2\n"), HasSubstr("study.toml:1: study.version: expected version = 1"));
  EXPECT_THAT(errorOf("[study]\nversion = 1\nminimum-length = -1\n"),
              HasSubstr("study.toml:3: study.minimum-length: expected seconds from 0 on"));
}

}  // namespace
