#include <skeigiot/session/stream.hpp>

#include "target.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace fuzz
{

namespace
{

constexpr std::size_t longestLine = 2000;

void expectOneObject(const std::string& answer)
{
  expect(!answer.empty() && answer.find('\n') == answer.size() - 1, "an answer is one line");
  expect(nlohmann::json::parse(answer).is_object(), "an answer is an object");
}

void answerAll(std::string_view input, KV::session::StreamTimes times)
{
  const KV::session::TimePoint arrival(boost::chrono::seconds(1577836800));
  KV::session::Stream stream(times, [arrival] { return arrival; });
  while (!input.empty())
  {
    const std::string_view line = input.substr(0, input.find('\n'));
    expectOneObject(line.size() > longestLine ? stream.answerToLongLine(longestLine) : stream.answer(line));
    input.remove_prefix(std::min(input.size(), line.size() + 1));
  }
}

}  // namespace

void fuzzStream(std::string_view input)
{
  answerAll(input, KV::session::StreamTimes::Lines);
  answerAll(input, KV::session::StreamTimes::Arrival);
}

}  // namespace fuzz
