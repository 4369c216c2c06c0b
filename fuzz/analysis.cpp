#include "inputasfile.hpp"
#include "target.hpp"
#include "terminal/explanationtext.hpp"
#include "terminal/inspectiontext.hpp"
#include "terminal/watchpage.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/explanationjson.hpp>
#include <skeigiot/session/inquiry.hpp>
#include <skeigiot/session/inspectionreport.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/persontable.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/report.hpp>

#include <nlohmann/json.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

/// The views of recordings: the input is a recording of any format, or lines of a stream.
namespace fuzz
{

namespace
{

using KV::session::Duration;

constexpr int mostSteps = 200;  // of one input, as in recordings.cpp
constexpr int width = 100;      // [columns]

/// Ends a recording after some steps.
KV::session::Player::GoOn someSteps()
{
  return [left = mostSteps](const KV::session::Progress&) mutable { return --left > 0; };
}

void expectObject(const std::string& text)
{
  expect(nlohmann::json::parse(text).is_object(), "what is written as JSON is an object");
}

KV::session::Inquiry inquiryOf(const InputAsFile& file)
{
  KV::session::Inquiry inquiry;
  inquiry.open = [&file] { return KV::recordings::openRecording(file.path(), "", {}); };
  inquiry.name = "input";
  inquiry.person = 1;
  inquiry.skipBad = true;
  inquiry.goOn = someSteps();
  return inquiry;
}

/// Asks a question, and shows the answer in every form.
template <typename Ask>
void explain(const Ask& ask)
{
  try
  {
    const auto explanation = ask();
    expectObject(KV::session::explanationJson(explanation, "input"));
    for (const bool showsEach : {false, true})
    {
      KV::tools::ExplanationLayout layout;
      layout.showsEach = showsEach;
      expect(!KV::tools::explanationText(explanation, layout).empty(), "an explanation says something");
    }
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "what cannot be explained is complained of");
  }
}

std::size_t columnsOf(const KV::tools::PageLine& line)
{
  return std::accumulate(line.begin(), line.end(), std::size_t{0}, [](std::size_t sum, const KV::tools::Span& span) {
    // UTF-8 continues a character with bytes 10xxxxxx.
    return sum + static_cast<std::size_t>(std::count_if(span.text.begin(), span.text.end(), [](char character) {
             return (static_cast<unsigned char>(character) & 0xc0U) != 0x80U;
           }));
  });
}

void showPage(const KV::tools::WatchContents& contents, KV::tools::WatchView& view)
{
  for (const std::size_t height : {std::size_t{1}, std::size_t{24}})
  {
    const auto page = KV::tools::watchPage(contents, view, width, height);
    expect(page.size() <= height, "a page is no higher than the terminal");
    for (const KV::tools::PageLine& line : page)
      expect(columnsOf(line) <= width, "a line is no wider than the terminal");
  }
}

}  // namespace

void fuzzReport(std::string_view input)
{
  const InputAsFile file(input);
  KV::session::PlayerOptions options;
  options.skipBad = true;
  options.scopes.push_back({"beginning", Duration(0), Duration(1'000'000'000)});
  KV::session::Report report;
  const KV::session::Player player(options, someSteps());
  player.play([&file] { return KV::recordings::openRecording(file.path(), "", {}); }, {&report});
  if (!KV::session::Report::isAvailable())
    return;
  std::ostringstream page;
  report.write(page, {std::string(input.substr(0, 100))}, {});
  expect(!page.str().empty(), "a report is written");
}

void fuzzInspect(std::string_view input)
{
  const InputAsFile file(input);
  try
  {
    const auto report = KV::session::inspect(file.path(), "", {}, someSteps());
    std::ostringstream json;
    KV::session::writeAsJson(json, report);
    expectObject(json.str());
    std::ostringstream text;
    KV::tools::writeAsText(text, report, width);
    expect(!text.str().empty(), "an inspection says something");
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a recording that cannot be read is complained of");
  }
}

void fuzzWhy(std::string_view input)
{
  const InputAsFile file(input);
  const Duration at(static_cast<Duration::rep>(input.size() % 10) * 100'000'000);
  explain([&] { return KV::session::explainMoment(inquiryOf(file), at); });
  explain([&] { return KV::session::explainSpan(inquiryOf(file), Duration(0), boost::none); });
}

void fuzzWatch(std::string_view input)
{
  const KV::session::TimePoint arrival(boost::chrono::seconds(1577836800));
  KV::session::PersonTable table;
  KV::session::LiveSession session(KV::session::StreamTimes::Lines, [arrival] { return arrival; }, {&table});
  KV::tools::InputStatus status;
  KV::tools::WatchView view;
  for (int left = mostSteps; left > 0 && !input.empty(); --left)
  {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(input.size(), line.size() + 1));
    ++status.lines;
    try
    {
      for (const auto person : session.take(line))
        table.remove(person);
    }
    catch (const KV::recordings::MemberError& error)
    {
      ++status.refused;
      status.lastError = error.member() + ": " + error.what();
    }
    table.removeOld(session.present());
    showPage({table.rows(), status, session.present()}, view);
    view.press(left % 2 == 0 ? KV::tools::Key::Down : KV::tools::Key::Pane, table.rows());
  }
}

}  // namespace fuzz
