#include <skeigiot/session/stream.hpp>

#include "cli/lineinput.hpp"
#include "target.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>

namespace fuzz
{

namespace
{

constexpr std::size_t longestLine = 2000;
constexpr std::size_t pieceSize = 700;  // so that lines are cut

void expectOneObject(const std::string& answer)
{
  expect(!answer.empty() && answer.find('\n') == answer.size() - 1, "an answer is one line");
  expect(nlohmann::json::parse(answer).is_object(), "an answer is an object");
}

/// Answers every line that has come in, and returns how many there were.
std::size_t answerLines(KV::session::Stream& stream, KV::tools::LineInput& lines)
{
  using Line = KV::tools::LineInput::Line;
  std::size_t count = 0;
  std::string_view line;
  for (Line state = lines.take(line); state != Line::NotYetHere; state = lines.take(line))
  {
    expectOneObject(state == Line::TooLong ? stream.answerToLongLine(longestLine) : stream.answer(line));
    ++count;
  }
  return count;
}

void answerAll(std::string_view input, KV::session::StreamTimes times)
{
  const KV::session::TimePoint arrival(boost::chrono::seconds(1577836800));
  KV::session::Stream stream(times, [arrival] { return arrival; });
  KV::tools::LineInput lines(longestLine);
  std::size_t answers = 0;
  for (std::size_t i = 0; i < input.size(); i += pieceSize)
  {
    lines.add(input.substr(i, pieceSize));
    answers += answerLines(stream, lines);
  }
  lines.end();
  answers += answerLines(stream, lines);

  const auto ends = static_cast<std::size_t>(std::count(input.begin(), input.end(), '\n'));
  expect(answers == ends + (input.empty() || input.back() == '\n' ? 0 : 1), "each line has its answer");
}

}  // namespace

void fuzzStream(std::string_view input)
{
  answerAll(input, KV::session::StreamTimes::Lines);
  answerAll(input, KV::session::StreamTimes::Arrival);
}

}  // namespace fuzz
