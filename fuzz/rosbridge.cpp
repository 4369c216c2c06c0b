#include "rosbridge/fragments.hpp"
#include "rosbridge/listedtopics.hpp"
#include "rosbridge/rosbridgeoperations.hpp"
#include "rosbridge/rosjson.hpp"
#include "target.hpp"

#include <skeigiot/recordings/ros4hriinput.hpp>

#include <boost/chrono/duration.hpp>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// Texts of rosbridge, one in each line: their messages become CDR, steps and topics to read.
namespace fuzz
{

namespace
{

using KV::recordings::Ros4hriInput;
using KV::ros2::RosbridgeText;

constexpr std::size_t mostTopics = 20;
constexpr std::size_t longestText = 1000;  // of fragments
constexpr std::int64_t second = 1'000'000'000;

/// Puts fragments together as the bus does; other texts stay as they are.
RosbridgeText wholeOf(RosbridgeText text, KV::ros2::Fragments& fragments)
{
  if (text.kind != RosbridgeText::Kind::Fragment)
    return text;
  RosbridgeText nothing;
  nothing.words = "the text is not complete";
  try
  {
    const auto whole = fragments.take(std::move(text.fragment));
    if (!whole)
      return nothing;
    expect(whole->size() <= longestText, "the text is bounded");
    text = KV::ros2::readRosbridgeText(*whole);
    return text.kind == RosbridgeText::Kind::Fragment ? nothing : text;
  }
  catch (const std::invalid_argument& error)
  {
    expect(*error.what() != '\0', "a text that is left out is complained of");
    return nothing;
  }
}

/// Passes a message on as the bus does.
void take(const RosbridgeText& text, Ros4hriInput::TimePoint time, Ros4hriInput& input)
{
  const std::string type = Ros4hriInput::typeOf(text.topic);
  if (type.empty())
    return;
  try
  {
    std::vector<char> data = KV::ros2::cdrOfJson(text.message, type);
    expect(data.size() >= 4 && data[1] == 1, "the message is in CDR");
    input.take(text.topic, time, data);
  }
  catch (const KV::ros2::RosJsonError& error)
  {
    expect(*error.what() != '\0', "a message that does not fit is complained of");
  }
  catch (const std::runtime_error& error)
  {
    const std::string why = error.what();
    expect(why.find("ends too early") == std::string::npos, "what JSON has is whole in CDR");
  }
}

}  // namespace

void fuzzRosbridge(std::string_view input)
{
  Ros4hriInput steps{KV::recordings::ReadingOptions()};
  KV::ros2::ListedTopics topics(
      Ros4hriInput::topics(), Ros4hriInput::lists(),
      [](const std::string& topic) { return !Ros4hriInput::typeOf(topic).empty(); }, mostTopics);
  const std::size_t fixed = topics.all().size();
  KV::ros2::Fragments fragments(longestText);
  Ros4hriInput::TimePoint time(boost::chrono::seconds(1577836800));
  for (std::size_t begin = 0; begin < input.size();)
  {
    const std::size_t end = input.find('\n', begin);
    const RosbridgeText text = wholeOf(KV::ros2::readRosbridgeText(input.substr(begin, end - begin)), fragments);
    begin = end == std::string_view::npos ? input.size() : end + 1;
    time += boost::chrono::milliseconds(50);
    if (text.kind != RosbridgeText::Kind::Message)
    {
      expect(!text.words.empty(), "a text without a message has words");
      continue;
    }
    topics.take(text.topic, KV::ros2::idsIn(text.message));
    topics.follow(static_cast<std::int64_t>(begin) * second);
    expect(topics.all().size() <= fixed + mostTopics, "topics are bounded");
    take(text, time, steps);
  }
  steps.finish();
  while (steps.next())
  {}
}

}  // namespace fuzz
