#pragma once

#include "cli/messages.hpp"
#include "commands/livesource.hpp"
#include "serve/listenaddress.hpp"
#include "serve/orders.hpp"
#include "serve/pageserver.hpp"

#include <skeigiot/session/cycle.hpp>

#include <CLI/App.hpp>

#include <functional>
#include <memory>
#include <optional>

namespace KV::tools
{

/// The command line's options about the page.
struct LiveServerOptions
{
  ListenAddress listen;
  bool noOpen = false;
};

/// Shows a live source on a page in the browser, as `skeigiot serve` does.
///
/// \par Thread safety
///   submit() may be called on any thread; all other functions on the thread of the session.
class LiveServer
{
public:
  /// \param cycle  of the session, for the report
  explicit LiveServer(session::Cycle cycle);
  ~LiveServer();
  LiveServer(const LiveServer&) = delete;
  LiveServer& operator=(const LiveServer&) = delete;

  /// Returns the functions that get the input of the source; they refer to this object.
  LiveListeners listeners();

  /// Has the thread of the session carry out an order, and waits for its answer.
  OrderAnswer submit(std::function<OrderAnswer()> order);

  /// Prints the address of the page, and serves it until a signal comes. Call it once.
  ///
  /// \throws Interrupted then.
  /// \throws std::runtime_error if it cannot listen there, or of the source.
  void serve(LiveSource& source, const LiveServerOptions& options, Messages& messages,
             std::optional<ServedCamera> camera = std::nullopt);

private:
  class Session;
  class Ending;

  std::unique_ptr<Session> _session;
};

/// \throws std::runtime_error if the command was built without the page; the text says what to install.
void requireLivePage();

/// Adds the options --listen and --no-open.
CLI::Option* addListenOption(CLI::App& command, LiveServerOptions& options);
CLI::Option* addNoOpenOption(CLI::App& command, LiveServerOptions& options);

}  // namespace KV::tools
