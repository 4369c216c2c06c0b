#include "replayrun.hpp"

#include "silencedlog.hpp"

#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/player.hpp>

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <utility>

namespace binding
{

namespace
{

std::unique_ptr<KV::recordings::Reader> open(const ReplayRequest& request)
{
  return KV::session::openSession(request.session,
                                  [&request](const std::string& path) -> std::unique_ptr<KV::recordings::Reader> {
                                    const auto frame = request.frames.find(path);
                                    if (frame != request.frames.end())
                                      return KV::recordings::openTable(frame->second, request.format, request.reading);
                                    return KV::recordings::openRecording(path, request.format, request.reading);
                                  });
}

void add(std::vector<std::string>& texts, std::vector<std::string> others)
{
  for (std::string& text : others)
    texts.push_back(std::move(text));
}

// Only files have offsets.
std::string hintFor(const KV::recordings::Error& error, const ReplayRequest& request)
{
  const auto& remedy = error.remedy();
  if (remedy && remedy->input.empty())
    return "; replay_all() replays each as a session of its own, given a list of them or their folder";
  if (!remedy || request.frames.count(remedy->input) > 0)
    return {};
  std::array<char, 64> seconds{};
  std::snprintf(seconds.data(), seconds.size(), "%.3f", static_cast<double>(remedy->offset.count()) * 1e-9);
  return "; offsets={'" + remedy->input + "': " + seconds.data() +
         "} would let them begin together, replay_all() replays each as a session of its own";
}

KV::session::PlayerOptions optionsOf(const ReplayRequest& request)
{
  KV::session::PlayerOptions options;
  options.skipBad = request.skipBad;
  options.cycle = request.cycle;
  options.scopes.push_back({"whole recording", KV::session::Duration(0), boost::none});
  options.scopes.insert(options.scopes.end(), request.scopes.begin(), request.scopes.end());
  return options;
}

}  // namespace

ReplayOutcome play(const ReplayRequest& request, const std::vector<KV::session::SessionObserver*>& observers,
                   const std::function<void()>& check)
{
  ReplayOutcome result;
  result.name = request.session.name();
  const SilencedLog silenced;
  const KV::session::Player player(optionsOf(request), [&check](const KV::session::Progress&) {
    check();
    return true;
  });
  KV::session::Outcome outcome = player.play([&request] { return open(request); }, observers);

  result.length = outcome.length;
  result.description = std::move(outcome.description);
  result.learned = std::move(outcome.learned);
  result.error = std::move(outcome.error);
  if (result.error)
    result.hint = hintFor(*result.error, request);
  result.warnings = outcome.warningLines();
  if (outcome.badLines > 0)
    result.warnings.push_back(outcome.skippedText());
  if (!outcome.leftOut.empty())
    result.warnings.push_back(outcome.leftOut);
  add(result.warnings, std::move(outcome.libraryWarnings));
  return result;
}

ReplayOutcome replay(const ReplayRequest& request, const std::function<void()>& check)
{
  ReplayTables tables;
  const KV::session::SessionName name = request.session.exportedAs(request.number);
  ReplayRecord record(name, request.explain, tables);
  std::ostringstream summary;
  const auto exporter = KV::session::exportFormat("summary").make(summary);
  exporter->writeHeader();
  exporter->beginSession(name);
  ReplayOutcome result = play(request, {&record, exporter.get()}, check);
  exporter->endSession(result.error ? result.error->what() : "");
  result.tables = std::move(tables);
  result.summary = summary.str();
  return result;
}

}  // namespace binding
