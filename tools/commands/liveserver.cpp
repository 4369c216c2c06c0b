#include "commands/liveserver.hpp"

#include "cli/argumentparsing.hpp"
#include "cli/waiting.hpp"
#include "commands/reportfile.hpp"
#include "serve/guard.hpp"
#include "serve/liveorders.hpp"
#include "serve/livepage.hpp"
#include "serve/openbrowser.hpp"
#include "terminal/terminalstream.hpp"

#include <skeigiot/readings.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/librarylog.hpp>
#include <skeigiot/session/liverecording.hpp>
#include <skeigiot/session/liveview.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/report.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

const char* const withoutPage =
    "this command was built without the live page: install npm (on Debian: nodejs and npm), and build it again";

constexpr std::chrono::milliseconds shortestPause(50);  // between two events
constexpr std::chrono::milliseconds statusPause(1000);  // between two with the state of the input

using SteadyClock = std::chrono::steady_clock;

/// Measures how many steps come in, and the age of their readings then.
class InputMeter : public session::SessionObserver
{
public:
  void stepBegins(const recordings::Step& step) override
  {
    boost::optional<session::TimePoint> newest;
    forEachReading([&](const auto& known) {
      if (const auto& reading = known.in(step.observation); reading && (!newest || reading->time > *newest))
        newest = reading->time;
    });
    if (!newest || *newest == step.time)
      return;
    _delays += std::chrono::duration<double>(std::chrono::nanoseconds((step.time - *newest).count())).count();
    ++_delayed;
  }

  /// Returns the mean of the delays since the last call [s]; nothing if no step had a time of its own.
  boost::optional<double> takeDelay()
  {
    const auto count = static_cast<double>(std::exchange(_delayed, 0));
    const double sum = std::exchange(_delays, 0.);
    return boost::make_optional(count > 0., sum / std::max(count, 1.));
  }

private:
  double _delays = 0.;
  std::size_t _delayed = 0;
};

/// Plays the recorded lines, and returns the report on them. Runs on a thread of the server.
std::string reportOf(const session::LiveRecording::Part& part, session::Cycle cycle, const std::string& name,
                     const std::atomic<bool>& ends)
{
  if (part.size() == 0)
    throw std::runtime_error("Nothing has come in yet.");
  session::PlayerOptions options;
  options.cycle = cycle;
  options.skipBad = true;
  session::Report report;
  const session::Player player(options, [&ends](const session::Progress&) { return !ends; });
  const std::unique_ptr<std::istream> steps = part.open();
  const session::Outcome outcome =
      player.play([&] { return recordings::openRecording(*steps, name, "jsonl", {}); }, {&report});
  if (outcome.error)
    throw std::runtime_error(outcome.error->what());
  if (outcome.stopped)
    throw std::runtime_error("The program ends.");
  session::ReportOrigin origin;
  origin.files.push_back({name, part.size(), "jsonl"});
  origin.notes = outcome.libraryWarnings;
  origin.version = SKEIGIOT_VERSION;
  origin.made = dateOfMaking();
  std::ostringstream page;
  page.exceptions(std::ios::badbit);  // else a lack of memory would cut the page
  report.write(page, origin);
  return page.str();
}

/// Returns what the input has come in: the word on the page.
const char* unitOf(const InputStatus& status)
{
  if (status.isBus)
    return "messages";
  return status.name.empty() ? "lines" : "steps";
}

}  // namespace

/// A page that is served; all functions except those for the server run on one thread.
class LiveServer::Session
{
public:
  explicit Session(session::Cycle cycle) : _cycle(cycle), _recording(std::filesystem::temp_directory_path().string()) {}

  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  LiveListeners listeners()
  {
    return {{&_view, &_recording, &_meter}, [this](std::int32_t person) {
              _view.remove(person);
              _recording.remove(person);
            }};
  }

  OrderAnswer submit(std::function<OrderAnswer()> order) { return _orders.submit(std::move(order)); }

  /// Begins with the source, which must outlive end().
  void begin(LiveSource& source)
  {
    _source = &source;
    _tell(true);
  }

  const EventLog& events() const { return _events; }

  /// Ends the events and the reports that are being made.
  void end()
  {
    _ends = true;
    _orders.close();
    _events.close();
  }

  /// Returns the content of the server; the server must end before this object.
  ServedSession served(std::optional<ServedCamera> camera)
  {
    const std::string name = _source->status().name.empty() ? "live session" : _source->status().name;
    return {livePage(),
            [this](const std::string& json) {
              return _orders.submit([this, json] {
                return carryOut(json, _view, [this](recordings::Step step) { return _source->takeScopes(step); });
              });
            },
            [this] { return _part(); }, [this, name] { return reportOf(_part(), _cycle, name, _ends); },
            std::move(camera)};
  }

  /// Runs until a signal ends it.
  ///
  /// \throws Interrupted then.
  [[noreturn]] void run()
  {
    for (;;)
    {
      _waitForSomething();
      const SteadyClock::time_point now = SteadyClock::now();
      const bool isStatusDue = now - _lastStatus >= statusPause;
      if (isStatusDue || (_view.hasNews() && now - _lastNews >= shortestPause))
        _tell(isStatusDue);
    }
  }

private:
  /// Waits in any thread for the thread of the session.
  session::LiveRecording::Part _part()
  {
    const auto part = std::make_shared<session::LiveRecording::Part>();
    const OrderAnswer answer = _orders.submit([this, part] {
      *part = _recording.part();
      return OrderAnswer();
    });
    if (!answer.isDone())
      throw std::runtime_error(answer.text);
    return *part;
  }

  void _waitForSomething()
  {
    std::vector<pollfd> descriptors{{_orders.descriptor(), POLLIN, 0}};
    for (const pollfd& descriptor : _source->descriptors())
      descriptors.push_back(descriptor);
    SteadyClock::time_point until = std::min(_source->due(), _lastStatus + statusPause);
    if (_view.hasNews())
      until = std::min(until, _lastNews + shortestPause);
    waitUntil(descriptors, until);
    _orders.doAll();
    _source->take(descriptors.size() > 1 && descriptors.back().revents != 0);
  }

  void _tell(bool withStatus)
  {
    const SteadyClock::time_point now = SteadyClock::now();
    std::optional<session::LiveInput> input;
    if (withStatus)
    {
      _takeWarnings();
      input = _input(now);
      _lastStatus = now;
    }
    std::string news = _view.takeNews(_source->present(), input ? &*input : nullptr);
    _events.setFacts(_view.facts());
    _events.publish(std::move(news), now);
    _lastNews = now;
  }

  void _takeWarnings()
  {
    for (const std::string& warning : _log.take())
      _view.warn(warning);
    for (const std::string& note : _source->takeNotes())
      _view.warn(note);
    if (!_recording.error().empty() && !std::exchange(_saidThatRecordingFailed, true))
      _view.warn("The recording cannot be saved any more: " + _recording.error());
  }

  session::LiveInput _input(SteadyClock::time_point now)
  {
    const InputStatus status = _source->status();
    const double seconds = std::chrono::duration<double>(now - _lastStatus).count();
    session::LiveInput input;
    input.name = status.name;
    input.unit = unitOf(status);
    input.speed = status.speed;
    input.lines = status.lines;
    input.refused = status.refused;
    input.lastError = status.lastError;
    input.rate =
        static_cast<double>(status.lines - std::exchange(_linesBefore, status.lines)) / std::max(seconds, 1e-3);
    input.delay = _meter.takeDelay();
    input.ended = status.ended;
    return input;
  }

  session::Cycle _cycle;
  session::LibraryLog _log;  // nothing is written to the terminal
  session::LiveView _view;
  session::LiveRecording _recording;
  InputMeter _meter;
  LiveSource* _source = nullptr;
  EventLog _events;
  Orders _orders;
  std::atomic<bool> _ends = false;
  SteadyClock::time_point _lastStatus;
  SteadyClock::time_point _lastNews;
  std::size_t _linesBefore = 0;
  bool _saidThatRecordingFailed = false;
};

/// Ends the events before the server, which waits for the readers of the events.
class LiveServer::Ending
{
public:
  explicit Ending(Session& session) : _session(session) {}
  ~Ending() { _session.end(); }
  Ending(const Ending&) = delete;
  Ending& operator=(const Ending&) = delete;

private:
  Session& _session;
};

LiveServer::LiveServer(session::Cycle cycle) : _session(std::make_unique<Session>(cycle)) {}

LiveServer::~LiveServer() = default;

LiveListeners LiveServer::listeners()
{
  return _session->listeners();
}

OrderAnswer LiveServer::submit(std::function<OrderAnswer()> order)
{
  return _session->submit(std::move(order));
}

void LiveServer::serve(LiveSource& source, const LiveServerOptions& options, Messages& messages,
                       std::optional<ServedCamera> camera)
{
  _session->begin(source);
  PageServer::Options address;
  address.address = options.listen.host;
  address.port = options.listen.port;
  const PageServer server(address, _session->events(), _session->served(std::move(camera)));
  const Ending ending(*_session);
  {
    StandardOutput output;
    output << server.address() << '\n';
    output.flush();
  }
  if (!isLoopback(address.address))
    messages.note("everyone who has this address sees the session and can move boundaries; nothing is encrypted");
  std::optional<OpenedBrowser> browser;
  if (!options.noOpen && hasDesktop())
    browser.emplace(server.address());
  messages.note("open this address in a browser; Ctrl-C ends");
  _session->run();
}

void requireLivePage()
{
  if (livePage().empty())
    throw std::runtime_error(withoutPage);
}

CLI::Option* addListenOption(CLI::App& command, LiveServerOptions& options)
{
  return addParsed<ListenAddress>(command, "--listen",
                                  "Address of this machine at which the page is served, as a number, with or\n"
                                  "without a port (127.0.0.1, and a port that is free). 0.0.0.0: all\n"
                                  "addresses, so that other machines see the page as well",
                                  "ADDRESS", parseListenAddress, options.listen);
}

CLI::Option* addNoOpenOption(CLI::App& command, LiveServerOptions& options)
{
  return command.add_flag("--no-open", options.noOpen, "Do not open the page in the browser of the desktop");
}

}  // namespace KV::tools
