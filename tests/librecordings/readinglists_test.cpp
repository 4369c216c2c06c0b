// Lists of readings that are maintained by hand are complete.

#include <skeigiot/readings.hpp>

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using ::testing::Contains;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using Json = nlohmann::ordered_json;
using Names = std::vector<std::string>;

std::string contentOf(const std::string& path)
{
  std::ifstream file(SKEIGIOT_SOURCE_DIR "/" + path);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

Names linesOf(const std::string& path)
{
  std::ifstream file(SKEIGIOT_SOURCE_DIR "/" + path);
  Names lines;
  for (std::string line; std::getline(file, line);)
    lines.push_back(line);
  EXPECT_FALSE(lines.empty()) << path;
  return lines;
}

Names namesOfReadings()
{
  Names names;
  KV::forEachReading([&names](const auto& known) { names.emplace_back(known.name); });
  return names;
}

template <typename Value>
Names namesOfParts()
{
  Names names;
  KV::forEachPart<Value>([&names](const auto& part) { names.emplace_back(part.name); });
  return names;
}

/// The points are an array of the schema.
template <>
Names namesOfParts<KV::FacialPoints>()
{
  return {"points"};
}

Names keysOf(const Json& object)
{
  Names names;
  for (const auto& [name, value] : object.items())
    if (name != "time")
      names.push_back(name);
  return names;
}

/// Returns the lines of tables that have `name`, or "name." with a part, in their first column.
Names rowsOf(const Names& page, const std::string& name)
{
  Names rows;
  for (const std::string& line : page)
  {
    const std::string first = line.rfind("| ", 0) == 0 ? line.substr(0, line.find(" |", 1)) : "";
    if (first.find("`" + name + "`") != std::string::npos || first.find("`" + name + ".") != std::string::npos)
      rows.push_back(line);
  }
  return rows;
}

/// Returns the lines from one that begins with `begin` to one that begins with `end`.
Names section(const Names& page, const std::string& begin, const std::string& end)
{
  Names lines;
  bool isInside = false;
  for (const std::string& line : page)
  {
    isInside = line.rfind(begin, 0) == 0 || (isInside && line.rfind(end, 0) != 0);
    if (isInside)
      lines.push_back(line);
  }
  EXPECT_FALSE(lines.empty()) << begin;
  return lines;
}

TEST(ListsOfReadings, AreCompleteInTheSchemaOfRecordings)
{
  const Json schema = Json::parse(contentOf("docs/recording.schema.json"));
  const Json& properties = schema["$defs"]["observation"]["properties"];
  EXPECT_THAT(keysOf(properties), ElementsAreArray(namesOfReadings()));
  KV::forEachReading([&](const auto& known) {
    using Value = typename std::decay_t<decltype(known)>::Value;
    const Json& reading = properties[known.name];
    const Json& form = reading.contains("$ref")
                           ? schema[Json::json_pointer(reading["$ref"].template get<std::string>().substr(1))]
                           : reading;
    EXPECT_THAT(keysOf(form["properties"]), ElementsAreArray(namesOfParts<Value>())) << known.name;
  });
}

TEST(ListsOfReadings, AreCompleteOnThePageOfJsonLines)
{
  const Names page = section(linesOf("docs/recording-format.md"), "### Readings", "## ");
  KV::forEachReading([&page](const auto& known) {
    const Names rows = rowsOf(page, known.name);
    ASSERT_EQ(1u, rows.size()) << known.name;
    const std::string unit = known.scale.unit;
    EXPECT_THAT(rows[0], HasSubstr(unit.empty() ? "" : "[" + unit + "]"));
  });
}

TEST(ListsOfReadings, AreCompleteOnThePageOfTidyCsv)
{
  const Names page = section(linesOf("docs/recording-format.md"), "| reading | columns |", "##");
  for (const std::string& name : namesOfReadings())
    EXPECT_EQ(1u, rowsOf(page, name).size()) << name;
}

TEST(ListsOfReadings, AreCompleteOnThePageThatExplainsTheLibrary)
{
  const Names page = section(linesOf("docs/how-it-works.md"), "| reading |", "\"");
  for (const std::string& name : namesOfReadings())
    EXPECT_EQ(1u, rowsOf(page, name).size()) << name;
}

TEST(ListsOfReadings, AreCompleteInTheTypesOfPython)
{
  const Names lines = section(linesOf("python/skeigiot/_skeigiot.pyi"), "class PersonObservation:", "def ");
  const auto namesBefore = [&lines](const std::string& begin, const std::string& type) {
    Names names;
    for (const std::string& line : lines)
      if (const auto end = line.find(": " + type); end != std::string::npos && line.rfind(begin, 0) == 0)
        names.push_back(line.substr(begin.size(), end - begin.size()));
    return names;
  };
  EXPECT_THAT(namesBefore("    ", "_ReadingAttribute["), ElementsAreArray(namesOfReadings()));
  EXPECT_THAT(namesBefore("        ", "_Reading["), ElementsAreArray(namesOfReadings()));
}

TEST(ListsOfReadings, AreCompleteInTheDictionariesOfFuzzers)
{
  const Names jsonl = linesOf("fuzz/dictionaries/jsonl");
  const Names stream = linesOf("fuzz/dictionaries/stream");
  const std::string tidy = contentOf("fuzz/dictionaries/tidy");
  for (const std::string& name : namesOfReadings())
  {
    EXPECT_THAT(jsonl, Contains("\"\\\"" + name + "\\\":\""));
    EXPECT_THAT(stream, Contains("\"\\\"" + name + "\\\":\""));
    EXPECT_THAT(tidy, HasSubstr("\"" + name)) << name;
  }
}

TEST(ListsOfReadings, AreCompleteWhereFuzzersBegin)
{
  const std::string jsonl = contentOf("fuzz/corpus/jsonl/all-readings.jsonl");
  const std::string stream = contentOf("fuzz/corpus/stream/all-readings.jsonl");
  for (const std::string& name : namesOfReadings())
  {
    EXPECT_THAT(jsonl, HasSubstr("\"" + name + "\":"));
    EXPECT_THAT(stream, HasSubstr("\"" + name + "\":"));
  }
}

}  // namespace
