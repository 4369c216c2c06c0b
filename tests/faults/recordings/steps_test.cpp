#include "faults/repeatedfailure.hpp"

#include <skeigiot/recordings/builtinmapping.hpp>
#include <skeigiot/recordings/jsonlineswriter.hpp>
#include <skeigiot/recordings/observationjson.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using KV::recordings::Step;

std::vector<Step> stepsWithAllReadings()
{
  std::ifstream file(SKEIGIOT_FUZZ_CORPUS "/jsonl/all-readings.jsonl");
  std::vector<Step> steps;
  for (std::string line; std::getline(file, line);)
    steps.push_back(KV::recordings::stepFromJson(line));
  return steps;
}

TEST(StepWithoutMemory, IsWrittenWholeOrNotAtAll)
{
  const std::vector<Step> steps = stepsWithAllReadings();
  ASSERT_FALSE(steps.empty());
  for (const Step& step : steps)
  {
    const std::string whole = KV::recordings::stepToJson(step);
    const std::size_t thrown = faults::failRepeatedly(
        [] { return std::string("former"); }, [&](std::string& text) { text = KV::recordings::stepToJson(step); },
        [&](const std::string& text, bool threw) { EXPECT_EQ(threw ? "former" : whole, text); });
    EXPECT_GT(thrown, 2U);
  }
}

/// The stream's own shortage is reported by the stream, as its user asked for; a step is not cut.
TEST(StepWithoutMemory, IsALineOrNothing)
{
  const std::vector<Step> steps = stepsWithAllReadings();
  std::string whole;
  faults::failRepeatedly(
      [] {
        auto stream = std::make_unique<std::stringstream>(std::string(100000, ' '));
        stream->exceptions(std::ios::badbit);
        return stream;
      },
      [&](std::unique_ptr<std::stringstream>& stream) {
        KV::recordings::JsonLinesWriter writer(*stream);
        for (const Step& step : steps)
          writer.write(step);
        if (whole.empty())
          whole = stream->str();
      },
      [&](std::unique_ptr<std::stringstream>& stream, bool threw) {
        const std::string text = stream->str();
        const std::size_t end = text.find_last_not_of(' ') + 1;
        EXPECT_EQ(whole.substr(0, end), text.substr(0, end));
        EXPECT_TRUE(end == 0 || text[end - 1] == '\n');
        EXPECT_TRUE(threw || text == whole);
      });
}

/// A line that is refused must not become one that is accepted because its message does not fit.
TEST(StepWithoutMemory, IsRefusedOrRunsOutOfMemory)
{
  for (const std::string text :
       {R"({"time":1,"person":1,"observation":{"smile":{"value":"broad"}}})", R"({"time":1,"unknown":[1,{"a":2}]})",
        R"({"time":1,"time":2})", R"({"time":1,"person":1,"observation":{"gaze":{"yaw":1e99,"pitch":0}}})", "[1,[2,3]]",
        R"({"time":1,"person":1,"observation":[[[[[[[[[[[[[[[[[[1]]]]]]]]]]]]]]]]]]})"})
  {
    SCOPED_TRACE(text);
    int refused = 0;
    const std::size_t thrown = faults::failRepeatedly([] { return 0; },
                                                      [&](int) {
                                                        try
                                                        {
                                                          KV::recordings::stepFromJson(text);
                                                          ADD_FAILURE() << "accepted";
                                                        }
                                                        catch (const KV::recordings::MemberError&)
                                                        {
                                                          ++refused;
                                                        }
                                                      },
                                                      [](int, bool) {});
    EXPECT_GT(refused, 0);
    EXPECT_GT(thrown, 0U);
  }
}

}  // namespace
