#include "serve/pageserver.hpp"

#include "camera/cameraassets.hpp"
#include "serve/guard.hpp"
#include "serve/guardedsocket.hpp"

#include <httplib.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <locale>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t largestBody = std::size_t{64} << 10U;
constexpr std::chrono::milliseconds longestSilence(500);  // between two looks at whether the client is still there

constexpr int longestQueue = 512;  // of connections that nobody has looked at yet
constexpr std::chrono::milliseconds longestFarewell(2000);
constexpr std::chrono::milliseconds farewellStep(5);

namespace status
{
constexpr int ok = 200;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int notAllowed = 405;
constexpr int wrongForm = 415;
constexpr int failed = 500;
constexpr int busy = 503;
}  // namespace status

/// A connection that is turned away is answered on the thread that accepts connections.
thread_local bool isTurnedAway = false;

/// Runs each connection on a thread, so many at a time; the others are turned away.
class Connections : public httplib::TaskQueue
{
public:
  explicit Connections(std::size_t most) : _most(most), _threads(most) {}

  void enqueue(std::function<void()> serve) override
  {
    if (_open.fetch_add(1) < _most)
    {
      _threads.enqueue([this, serve = std::move(serve)] {
        serve();
        --_open;
      });
      return;
    }
    isTurnedAway = true;
    serve();
    isTurnedAway = false;
    --_open;
  }

  void shutdown() override { _threads.shutdown(); }

private:
  std::size_t _most;
  std::atomic<std::size_t> _open = 0;
  httplib::ThreadPool _threads;
};

/// Keeps signals from the threads that are started while it lives: they are for the thread of the session.
class WithoutSignals
{
public:
  WithoutSignals()
  {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &_before);
  }
  ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
  WithoutSignals(const WithoutSignals&) = delete;
  WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
  sigset_t _before{};
};

void replaceAll(std::string& text, std::string_view place, const std::string& by)
{
  for (std::size_t at = text.find(place); at != std::string::npos; at = text.find(place, at + by.size()))
    text.replace(at, place.size(), by);
}

/// Returns what the page looks at.
std::string textOf(const std::optional<ServedCamera>& camera)
{
  if (!camera)
    return "";
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << (camera->video.empty() ? "camera" : "video ");
  if (!camera->video.empty())
    text << camera->rate;
  return text.str();
}

/// Returns the text for an attribute of HTML.
std::string attributeOf(std::string text)
{
  constexpr std::array<std::pair<std::string_view, const char*>, 4> special = {
      {{"&", "&amp;"}, {"\"", "&quot;"}, {"<", "&lt;"}, {">", "&gt;"}}};
  for (const auto& [character, name] : special)
    replaceAll(text, character, name);
  return text;
}

/// Returns the page with a new number that lets its own script and style run, and the policy that says so. With a
/// camera, scripts of the server run as well, and programs in WebAssembly; texts are never run as scripts.
std::pair<std::string, std::string> pageAndPolicy(std::string_view page, const std::optional<ServedCamera>& camera)
{
  const std::string nonce = randomToken();
  std::string text(page);
  replaceAll(text, "{nonce}", nonce);
  replaceAll(text, "{camera}", textOf(camera));
  replaceAll(text, "{model}", camera && camera->model ? attributeOf(camera->model->name) : "");
  const std::string scripts = camera ? "'self' 'wasm-unsafe-eval' " : "";
  const std::string media = camera ? "media-src 'self'; " : "";
  return {std::move(text), "default-src 'none'; script-src " + scripts + "'nonce-" + nonce + "'; style-src 'nonce-" +
                               nonce + "'; img-src 'self' data:; connect-src 'self'; " + media +
                               "base-uri 'none'; form-action 'none'; frame-ancestors 'none'"};
}

void answer(httplib::Response& response, int status, const std::string& message)
{
  response.status = status;
  response.set_content(message + "\n", "text/plain; charset=utf-8");
}

/// Sends a video, or the part of it that the client asks for.
void sendFile(const std::string& path, httplib::Response& response)
{
  const auto file = std::make_shared<std::ifstream>(path, std::ios::binary);
  const std::uintmax_t size = std::filesystem::file_size(path);
  if (!*file)
    throw std::runtime_error("cannot read " + path);
  response.set_content_provider(static_cast<std::size_t>(size), "application/octet-stream",
                                [file](std::size_t from, std::size_t count, httplib::DataSink& sink) {
                                  std::array<char, std::size_t{64} << 10U> bytes{};
                                  file->seekg(static_cast<std::streamoff>(from));
                                  file->read(bytes.data(), static_cast<std::streamsize>(std::min(count, bytes.size())));
                                  const auto got = static_cast<std::size_t>(file->gcount());
                                  return got > 0 && sink.write(bytes.data(), got);
                                });
}

/// Sends a model, which may be large, piece by piece.
void sendModel(const std::shared_ptr<const FaceModel>& model, httplib::Response& response)
{
  const std::string& content = model->content;
  response.set_content_provider(content.size(), "application/octet-stream",
                                [model](std::size_t from, std::size_t count, httplib::DataSink& sink) {
                                  constexpr std::size_t piece = std::size_t{64} << 10U;
                                  return sink.write(model->content.data() + from, std::min(count, piece));
                                });
}

/// Sends bytes of a recording; returns false, which ends the connection, if they cannot be read or sent. Nothing
/// catches an error of a function that sends content.
bool sendPart(const session::LiveRecording::Part& part, std::size_t from, std::size_t count, httplib::DataSink& sink)
{
  try
  {
    std::array<char, std::size_t{64} << 10U> bytes{};
    const std::size_t got = part.read(from, bytes.data(), std::min(count, bytes.size()));
    return got > 0 && sink.write(bytes.data(), got);
  }
  catch (const std::exception&)
  {
    return false;
  }
}

/// Returns the number in a header that a browser sends when it connects again; 0 if the header is missing.
std::uint64_t lastEvent(const httplib::Request& request)
{
  const std::string text = request.get_header_value("Last-Event-ID");
  std::uint64_t number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && rest == text.data() + text.size() ? number : 0;
}

/// Reads events for one client.
class EventStream
{
public:
  /// Goes on behind the event that the client has read last, if that can be.
  EventStream(const EventLog& events, std::uint64_t lastRead)
    : _events(events), _next(std::max(events.first(), lastRead + 1))
  {}

  /// Writes what there is; returns false if the client is to be dropped.
  bool write(httplib::DataSink& sink)
  {
    std::string text;
    if (!std::exchange(_hasFacts, true))
      text = "retry: 1000\nevent: facts\ndata: " + *_events.facts() + "\n\n";
    const EventLog::Read read = _events.read(_next, text.empty() ? longestSilence : std::chrono::milliseconds(0));
    for (const auto& [number, event] : read.events)
    {
      text += "id: " + std::to_string(number) + "\ndata: " + *event + "\n\n";
      _next = number + 1;
    }
    const bool ends = read.tooSlow || (read.closed && read.events.empty());
    if (ends && !read.tooSlow)
      text += "event: end\ndata:\n\n";
    return (text.empty() || sink.write(text.data(), text.size())) && !ends;
  }

private:
  const EventLog& _events;
  std::uint64_t _next;
  bool _hasFacts = false;
};

}  // namespace

class PageServer::Server : public httplib::Server
{
public:
  Server(const PageServer::Options& options, const EventLog& events, ServedSession session)
    : _options(options), _events(events), _session(std::move(session))
  {
    new_task_queue = [most = options.connections] { return new Connections(most); };
    set_payload_max_length(largestBody);
    set_socket_options([](socket_t socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    _addRules();
    _addRoutes();
    _listen();
  }

  /// Sends the end to those who follow the events, which takes a moment.
  ~Server() override
  {
    for (auto left = longestFarewell; left.count() > 0 && _streams > 0; left -= farewellStep)
      std::this_thread::sleep_for(farewellStep);
    stop();
    _thread.join();
  }

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  int port() const { return _port; }
  const std::string& token() const { return _token; }
  const PageServer::Options& options() const { return _options; }

private:
  using Request = httplib::Request;
  using Response = httplib::Response;

  void _listen()
  {
    const bool isBound = _options.port == 0 ? (_port = bind_to_any_port(_options.address)) > 0
                                            : bind_to_port(_options.address, _port = _options.port);
    if (!isBound)
      throw std::runtime_error("cannot listen at " + _options.address +
                               (_options.port == 0 ? "" : " and port " + std::to_string(_options.port)) +
                               ": is the address one of this machine, and the port free?");
    ::listen(svr_sock_, longestQueue);  // the library lets 5 wait, and others would have to try again after a second
    const WithoutSignals withoutSignals;
    _thread = std::thread([this] { listen_after_bind(); });
    while (!is_running())  // stop() has no effect before
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  void _addRules()
  {
    set_default_headers({{"X-Content-Type-Options", "nosniff"},
                         {"X-Frame-Options", "DENY"},
                         {"Referrer-Policy", "no-referrer"},
                         {"Cache-Control", "no-store"},
                         {"Cross-Origin-Resource-Policy", "same-origin"},
                         {"Cross-Origin-Opener-Policy", "same-origin"}});
    set_pre_routing_handler([this](const Request& request, Response& response) {
      const auto [number, message] = _refusal(request);
      if (number == status::ok)
        return HandlerResponse::Unhandled;
      answer(response, number, message);
      return HandlerResponse::Handled;
    });
    set_post_routing_handler([](const Request&, Response& response) {
      if (!response.has_header("Content-Security-Policy"))
        response.set_header("Content-Security-Policy", "default-src 'none'; frame-ancestors 'none'; sandbox");
    });
    set_exception_handler([](const Request&, Response& response, const std::exception_ptr& exception) {
      try
      {
        std::rethrow_exception(exception);
      }
      catch (const std::exception& error)
      {
        answer(response, status::failed, error.what());
      }
      catch (...)
      {
        answer(response, status::failed, "it was interrupted");
      }
    });
  }

  /// Returns why a request is refused, whatever it asks for.
  std::pair<int, std::string> _refusal(const Request& request) const
  {
    const std::string host = request.get_header_value("Host");
    if (request.get_header_value_count("Host") != 1 || !isOwnHost(host, _port, isLoopback(_options.address)))
      return {status::forbidden, "This is not the address of the page: open the one that 'skeigiot serve' printed."};
    const std::size_t origins = request.get_header_value_count("Origin");
    if (origins > 1 || (origins == 1 && !isOwnOrigin(request.get_header_value("Origin"), host)))
      return {status::forbidden, "Another page may not ask for this."};
    if (!isSameSecret(request.get_param_value("token"), _token))
      return {status::forbidden, "The token is missing or wrong: open the address that 'skeigiot serve' printed."};
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST")
      return {status::notAllowed, "The page uses GET and POST only."};
    if (request.has_header("Content-Encoding") || request.is_multipart_form_data())
      return {status::wrongForm, "Orders are plain JSON."};
    return {status::ok, ""};
  }

  void _addRoutes()
  {
    Get("/", [this](const Request&, Response& response) {
      auto [page, policy] = pageAndPolicy(_session.page, _session.camera);
      response.set_header("Content-Security-Policy", policy);
      response.set_content(page, "text/html; charset=utf-8");
    });
    Get("/events", [this](const Request& request, Response& response) { _sendEvents(request, response); });
    Post("/order", [this](const Request& request, Response& response) {
      const OrderAnswer done = _session.order(request.body);
      answer(response, done.status, done.text);
    });
    Get("/recording.jsonl", [this](const Request&, Response& response) { _sendRecording(response); });
    Get("/report.html", [this](const Request&, Response& response) { _sendReport(response); });
    if (_session.camera)
      _addCamera(*_session.camera);
  }

  void _addCamera(const ServedCamera& camera)
  {
    Post("/frame", [&camera](const Request& request, Response& response) {
      const OrderAnswer taken = camera.frame(request.body);
      if (taken.isDone())
        response.set_content(taken.text, "application/json");
      else
        answer(response, taken.status, taken.text);
    });
    if (camera.model)
      Get("/camera/model", [&camera](const Request&, Response& response) { sendModel(camera.model, response); });
    Get("/camera/([-._A-Za-z0-9]{1,80})", [&camera](const Request& request, Response& response) {
      const std::optional<CameraAsset> asset = cameraAsset(request.matches[1].str());
      if (!asset)
      {
        answer(response, status::notFound, "There is no such file.");
        return;
      }
      response.set_content(contentOf(camera.folder + "/" + std::string(asset->name)), std::string(asset->type));
    });
    if (!camera.video.empty())
      Get("/video", [&camera](const Request&, Response& response) { sendFile(camera.video, response); });
  }

  void _sendEvents(const Request& request, Response& response)
  {
    if (_streams.fetch_add(1) >= _options.streams)
    {
      --_streams;
      answer(response, status::busy, "Too many pages are open.");
      return;
    }
    const auto stream = std::make_shared<EventStream>(_events, lastEvent(request));
    response.set_content_provider(
        "text/event-stream", [stream](std::size_t, httplib::DataSink& sink) { return stream->write(sink); },
        [this](bool) { --_streams; });
  }

  void _sendRecording(Response& response) const
  {
    const session::LiveRecording::Part part = _session.recording();
    response.set_header("Content-Disposition", "attachment; filename=\"recording.jsonl\"");
    if (part.size() == 0)
    {
      response.set_content("", "application/jsonl");
      return;
    }
    response.set_content_provider(part.size(), "application/jsonl",
                                  [part](std::size_t from, std::size_t count, httplib::DataSink& sink) {
                                    return sendPart(part, from, count, sink);
                                  });
  }

  void _sendReport(Response& response)
  {
    const std::unique_lock lock(_makingReport, std::try_to_lock);
    if (!lock)
    {
      answer(response, status::busy, "A report is being made: try again when it is done.");
      return;
    }
    response.set_header("Content-Disposition", "attachment; filename=\"report.html\"");
    response.set_content(_session.report(), "text/html; charset=utf-8");
  }

  bool process_and_close_socket(socket_t socket) override
  {
    bool isServed = false;
    if (isTurnedAway)
    {
      constexpr std::string_view text = "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\n\r\n";
      ::send(socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    else
    {
      const int yes = 1;
      setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
      GuardedSocket::Limits limits;
      limits.sending = _options.sending;
      limits.reading = _options.reading;
      GuardedSocket stream(socket, limits);
      bool isClosed = false;
      isServed = process_request(stream, true, isClosed, nullptr);
      stream.finish();
    }
    ::close(socket);
    return isServed;
  }

  const PageServer::Options _options;
  const EventLog& _events;
  const ServedSession _session;
  const std::string _token = randomToken();
  int _port = 0;
  std::atomic<std::size_t> _streams = 0;
  std::mutex _makingReport;
  std::thread _thread;
};

PageServer::PageServer(const Options& options, const EventLog& events, ServedSession session)
  : _server(std::make_unique<Server>(options, events, std::move(session)))
{}

PageServer::~PageServer() = default;

int PageServer::port() const
{
  return _server->port();
}

const std::string& PageServer::token() const
{
  return _server->token();
}

std::string PageServer::address() const
{
  const std::string& address = _server->options().address;
  const bool isAny = address == "0.0.0.0" || address == "::";
  const std::string host = isAny ? "127.0.0.1" : address.find(':') == std::string::npos ? address : "[" + address + "]";
  return "http://" + host + ":" + std::to_string(port()) + "/?token=" + token();
}

}  // namespace KV::tools
