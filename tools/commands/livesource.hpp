#pragma once

#include "cli/readingarguments.hpp"
#include "cli/waiting.hpp"
#include "terminal/watchpage.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/step.hpp>
#include <skeigiot/session/cycle.hpp>
#include <skeigiot/session/livesession.hpp>
#include <skeigiot/session/sessionobserver.hpp>
#include <skeigiot/session/sessionplan.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace KV::tools
{

/// The source of the persons in a live view: lines of standard input, or a recording that is played.
class LiveSource
{
public:
  using Clock = std::chrono::steady_clock;

  LiveSource() = default;
  LiveSource(const LiveSource&) = delete;
  LiveSource& operator=(const LiveSource&) = delete;
  virtual ~LiveSource() = default;

  /// Returns the descriptor to wait on, and until when.
  virtual std::vector<pollfd> descriptors() const = 0;
  virtual Clock::time_point due() const = 0;

  /// Reads the present input; returns whether there was any.
  virtual bool take(bool canBeRead) = 0;

  /// Takes a step that starts or stops scopes, as if it came in now. The function sets its time.
  ///
  /// \return why it is refused; empty if it is taken
  virtual std::string takeScopes(recordings::Step step) = 0;

  virtual void pause(bool) {}
  virtual session::TimePoint present() const = 0;
  virtual InputStatus status() const = 0;

  /// Returns the messages for the end.
  virtual std::vector<std::string> takeNotes() = 0;
};

/// The command line's options about a source.
struct LiveArguments
{
  session::StreamTimes times = session::StreamTimes::Arrival;
  session::Cycle cycle;
  session::SessionArguments recording;  ///< no paths: lines of standard input
  ReadingArguments reading;
  double speed = 1.;
};

/// The functions that get the input.
struct LiveListeners
{
  std::vector<session::SessionObserver*> observers;
  std::function<void(std::int32_t person)> left;  ///< called for each person whom a line asks to forget
};

/// Takes a step that starts or stops scopes into the session, as if it came in now.
///
/// \return why it is refused; empty if it is taken
std::string takeScopesInto(session::LiveSession& session, recordings::Step step);

/// Returns the message with the member that it is about.
std::string textOf(const recordings::MemberError& error);

/// Opens the source; the arguments and the observers must outlive it. `wallClock` gives the time of a line.
///
/// \throws Error if the recording cannot be opened.
/// \throws CLI::ValidationError if several recordings are named.
std::unique_ptr<LiveSource> openLiveSource(const LiveArguments& arguments, const LiveListeners& listeners,
                                           std::function<session::TimePoint()> wallClock);

}  // namespace KV::tools
