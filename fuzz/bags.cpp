#include "inputasfile.hpp"
#include "rosbag2/bagfolder.hpp"
#include "rosbag2/openbagfile.hpp"
#include "target.hpp"

#include <skeigiot/recordings/badline.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

/// Files of bags: those of MCAP, and the list of a folder's files.
namespace fuzz
{

namespace
{

using KV::recordings::BagFile;
using KV::recordings::BagMessage;
using KV::recordings::BagMessages;

// Further messages would test nothing new.
constexpr int mostMessages = 2000;

/// Reads a message; nothing at the end.
std::optional<BagMessage> next(BagMessages& messages)
{
  BagMessage message;
  try
  {
    return messages.next(message) ? std::make_optional(message) : std::nullopt;
  }
  catch (const KV::recordings::BadLine& error)
  {
    expect(*error.what() != '\0', "a message that cannot be used is complained of");
    message.number = 0;
    return message;
  }
}

void readMessages(BagFile& bag, const std::vector<std::int64_t>& topics)
{
  const std::unique_ptr<BagMessages> messages = bag.messagesOf(topics);
  std::int64_t time = 0;
  std::int64_t number = 0;
  for (int i = 0; i < mostMessages; ++i)
  {
    const auto message = next(*messages);
    if (!message)
      return;
    if (message->number == 0)
      continue;
    expect(std::tie(time, number) < std::tie(message->time, message->number), "messages come in the order of times");
    expect(bag.topics().count(message->topic) > 0, "a message has a topic");
    expect(bag.span() && bag.span()->first <= message->time && message->time <= bag.span()->last, "in its span");
    time = message->time;
    number = message->number;
  }
}

}  // namespace

void fuzzMcap(std::string_view input)
{
  const InputAsFile file(input);
  try
  {
    const std::unique_ptr<BagFile> bag = KV::recordings::openBagFile(file.path());
    expect(!bag->storage().empty(), "a bag that was opened says how it is stored");
    std::vector<std::int64_t> all;
    for (const auto& [key, topic] : bag->topics())
    {
      all.push_back(key);
      readMessages(*bag, {key});
    }
    readMessages(*bag, all);
    bag->forEachDifferent(all, [](const BagMessage&) {});
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a file that cannot be read is complained of");
  }
}

void fuzzBagMetadata(std::string_view input)
{
  try
  {
    for (const std::string& name : KV::recordings::filesListedIn(input))
      expect(name.find('/') == std::string::npos, "files are in the folder itself");
  }
  catch (const std::runtime_error& error)
  {
    expect(*error.what() != '\0', "a list that cannot be read is complained of");
  }
}

}  // namespace fuzz
