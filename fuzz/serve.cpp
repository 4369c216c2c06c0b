#include "commands/camerasource.hpp"
#include "serve/guard.hpp"
#include "serve/liveorders.hpp"

#include <skeigiot/session/liveview.hpp>

#include "target.hpp"

#include <nlohmann/json.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz
{

namespace
{

using KV::tools::OrderAnswer;

constexpr int port = 8080;

void expectAnswer(const OrderAnswer& answer)
{
  expect(answer.status == 200 || answer.status == 400 || answer.status == 409,
         "a frame or an order is done or refused");
  expect(answer.isDone() || !answer.text.empty(), "a refusal says why");
}

/// Gives each line to a session with a camera or a video, as the body of a frame, of an order, and as headers.
void giveAll(std::string_view input, const std::string& video)
{
  KV::session::TimePoint now(boost::chrono::seconds(1577836800));
  KV::tools::CameraSource::Clock::time_point steadyNow(std::chrono::hours(1));
  KV::session::LiveView view;
  const KV::tools::LiveArguments arguments;
  KV::tools::CameraSource source(
      arguments, {{&view}, [&view](std::int32_t person) { view.remove(person); }},
      [&now] { return now += boost::chrono::milliseconds(40); }, video,
      [&steadyNow] { return steadyNow += std::chrono::milliseconds(1600); });  // a second page may send now and then
  while (!input.empty())
  {
    const std::string line(input.substr(0, input.find('\n')));
    const OrderAnswer frame = source.takeFrame(line);
    expectAnswer(frame);
    expect(!frame.isDone() || nlohmann::json::parse(frame.text).is_object(), "an answer to a frame is an object");
    expectAnswer(
        KV::tools::carryOut(line, view, [&source](KV::recordings::Step step) { return source.takeScopes(step); }));
    expect(!KV::tools::isOwnHost(line, port, true) || KV::tools::isOwnHost(line, port, false),
           "a host of this machine is a host");
    expect(!KV::tools::isLoopback(line) || KV::tools::isAddress(line), "a loopback is an address");
    expect(!KV::tools::isOwnOrigin(line, line), "an origin has a scheme, which a host has not");
    input.remove_prefix(std::min(input.size(), line.size() + 1));
  }
  expect(nlohmann::json::parse(view.takeNews(source.present(), nullptr)).is_object(), "news are an object");
  view.putBoundariesBack();
}

}  // namespace

void fuzzServe(std::string_view input)
{
  giveAll(input, "");
  giveAll(input, "clip.mp4");
}

}  // namespace fuzz
