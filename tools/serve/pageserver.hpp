#pragma once

#include "camera/facemodel.hpp"
#include "serve/eventlog.hpp"
#include "serve/orders.hpp"

#include <skeigiot/session/liverecording.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace KV::tools
{

/// The content that a page server serves with a camera, or with a video in place of one. The function is called on
/// threads of the server.
struct ServedCamera
{
  std::string folder;  ///< of the assets
  std::string video;   ///< file; empty: the browser's camera
  double rate = 0.;    ///< frames of the video that are looked at in a second

  /// Finds the faces in place of the models of the installation; null: those do.
  std::shared_ptr<const FaceModel> model;

  /// Takes the numbers that the page found in a frame.
  std::function<OrderAnswer(const std::string& json)> frame;
};

/// The content that a page server serves. The functions are called on threads of the server.
struct ServedSession
{
  /// The page, in which "{nonce}" marks the number that lets its own script and style run, "{camera}" what the page
  /// looks at: nothing, "camera", or "video" and its rate, and "{model}" the name of the user's model of faces.
  std::string_view page;

  /// Does what the page asks for in JSON.
  std::function<OrderAnswer(const std::string& json)> order;

  /// Returns what was recorded so far.
  ///
  /// \throws std::exception where that fails; its message is shown.
  std::function<session::LiveRecording::Part()> recording;

  /// Returns the report of what was recorded so far: an HTML page.
  ///
  /// \throws std::exception where that fails; its message is shown.
  std::function<std::string()> report;

  std::optional<ServedCamera> camera = std::nullopt;  ///< none: the page asks for no camera
};

/// Serves the page of a live session over HTTP: the page, its events, orders, and the recording so far.
///
/// docs/live-page.md lists the rules of safety. Each has a test.
class PageServer
{
public:
  /// Where it listens, and what it bears.
  struct Options
  {
    std::string address = "127.0.0.1";          ///< a number, or localhost
    int port = 0;                               ///< 0: any that is free
    std::size_t connections = 32;               ///< open at a time; more are turned away
    std::size_t streams = 16;                   ///< of those, how many follow the events
    std::chrono::milliseconds sending{10'000};  ///< in which a client has to send its request
    std::chrono::milliseconds reading{5'000};   ///< in which a client has to read a text
  };

  /// Begins to serve. The events must outlive the server; close them before it ends.
  ///
  /// \throws std::runtime_error if it cannot listen there.
  PageServer(const Options& options, const EventLog& events, ServedSession session);
  ~PageServer();
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  /// Returns the port at which it listens.
  int port() const;

  /// Returns the secret without which the server gives nothing.
  const std::string& token() const;

  /// Returns the address to open in a browser, which has the token.
  std::string address() const;

private:
  class Server;

  std::unique_ptr<Server> _server;
};

}  // namespace KV::tools
