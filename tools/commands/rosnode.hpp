#pragma once

#include "cli/messages.hpp"
#include "commands/rossource.hpp"
#include "ros/rosanswers.hpp"
#include "ros/rosverdicts.hpp"
#include "ros/updatesfile.hpp"

#include <skeigiot/ros2/bus.hpp>
#include <skeigiot/session/duration.hpp>
#include <skeigiot/session/librarylog.hpp>
#include <skeigiot/session/recordingfile.hpp>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace KV::tools
{

/// How messages are taken, and the files that are written.
struct RosNodeOptions
{
  RosSourceOptions source;
  std::string recording;  ///< empty: none
  std::string updates;    ///< as JSON Lines; empty: none
  bool force = false;     ///< existing files are replaced
  bool isQuiet = false;   ///< warnings are kept for the end: a table fills the terminal
};

/// The node of ROS 2: owns the session, answers, records, exports, and publishes diagnostics once a second. A view
/// shows it as a live source.
///
/// \par Thread safety
///   Not synchronised; the bus has threads of its own.
class RosNode : public LiveSource
{
public:
  /// Returns the time of the wall clock to any thread.
  using Clock = std::function<session::TimePoint()>;

  /// Returns the time by which the node waits.
  using SteadyClock = std::function<LiveSource::Clock::time_point()>;

  /// Keeps the node going, as its LiveSource, until it is enough.
  using View = std::function<void(LiveSource& source)>;

  /// As many warnings are kept for a view, or for the end; of more, the oldest are forgotten, which is said at the end.
  static constexpr std::size_t mostNotes = 100;

  /// Opens the files. The messages and the listeners must outlive the node; the clock is that of the bus.
  ///
  /// \throws WriteError for a recording that cannot be written.
  /// \throws OutputRefused for an export that cannot be written.
  /// \throws recordings::Error if the file of the mapping cannot be read.
  RosNode(std::unique_ptr<ros2::Bus> bus, Clock clock, const RosNodeOptions& options, Messages& messages,
          const LiveListeners& listeners = {}, SteadyClock steadyClock = LiveSource::Clock::now);

  /// Runs until the view ends, a signal comes or the bus fails, and ends the session: all files are complete then. A
  /// node without a view runs until a signal comes.
  ///
  /// The exceptions of the view that derive from std::runtime_error count as failures of the bus.
  ///
  /// \return whether neither the bus nor the recording failed; the messages say why
  /// \throws WriteError for an export that cannot be written.
  bool run(const View& view);
  bool run();

  std::vector<pollfd> descriptors() const override { return _source->descriptors(); }
  LiveSource::Clock::time_point due() const override { return _source->due(); }

  /// \throws std::runtime_error if the bus fails.
  bool take(bool canBeRead) override;
  std::string takeScopes(recordings::Step step) override { return _source->takeScopes(std::move(step)); }
  session::TimePoint present() const override { return _source->present(); }
  InputStatus status() const override { return _source->status(); }

  /// Returns the warnings since the last call, without those of the library, which a LibraryLog has.
  std::vector<std::string> takeNotes() override;

private:
  [[noreturn]] void _runOn();
  void _finish();
  void _publishDiagnostics();
  void _takeNotes();
  void _say(const std::string& warning);
  void _keep(const std::string& note);
  void _sayKept();
  bool _hasRecordingFailed() const { return _recording && !_recording->error().empty(); }
  void _throwIfOutputFailed() const;
  template <typename Function>
  void _reportFailure(Function function);

  Messages& _messages;
  session::LibraryLog _log;
  Clock _clock;
  SteadyClock _steadyClock;
  std::unique_ptr<ros2::Bus> _bus;
  RosAnswers _answers;
  RosVerdicts _verdicts;
  std::optional<session::RecordingFile> _recording;
  std::optional<UpdatesFile> _updates;
  std::optional<RosSource> _source;
  LiveSource::Clock::time_point _nextDiagnostics;
  std::uint64_t _received = 0;
  std::uint64_t _dropped = 0;
  std::deque<std::string> _notes;  // for a view, or for the end
  std::size_t _forgotten = 0;      // of these
  bool _isQuiet;
  std::string _failure;  // of the bus or an output
  bool _saidThatRecordingFailed = false;
};

}  // namespace KV::tools
