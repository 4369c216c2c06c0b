#include "replayrun.hpp"

#include "librarylog.hpp"
#include "notedreading.hpp"
#include "session.hpp"
#include "silencedlog.hpp"
#include "tidyreader.hpp"

#include <memory>
#include <utility>

namespace binding
{

namespace
{

using tools::NotedReading;

std::unique_ptr<tools::RecordingReader> open(const ReplayRequest& request)
{
  return tools::openSession(request.session,
                            [&request](const std::string& path) -> std::unique_ptr<tools::RecordingReader> {
                              const auto frame = request.frames.find(path);
                              if (frame != request.frames.end())
                                return std::make_unique<tools::TidyReader>(tableOf(frame->second));
                              return tools::openRecording(path, request.format, request.reading);
                            });
}

void play(NotedReading& reading, tools::RecordingReader& reader, tools::Session& session, ReplayOutcome& outcome,
          const std::function<void()>& check)
{
  boost::optional<tools::RecordingEntry> entry;
  for (bool isFirst = true;; isFirst = false)
  {
    const auto step = reading.next(entry);
    check();
    if (isFirst)
      outcome.description = reader.describe();  // what was found out with the first step is in it
    if (step == NotedReading::Step::End)
      return;
    if (entry)
      session.play(*entry);
  }
}

void add(std::vector<std::string>& texts, std::vector<std::string> others)
{
  for (std::string& text : others)
    texts.push_back(std::move(text));
}

void replay(const ReplayRequest& request, tools::RecordingReader& reader, ReplayOutcome& outcome,
            const std::function<void()>& check)
{
  std::vector<tools::ScopeSpan> spans{{"whole recording", tools::Duration(0), boost::none}};
  spans.insert(spans.end(), request.scopes.begin(), request.scopes.end());
  ReplayRecord record(request.number, outcome.tables);
  tools::Session session(spans, {&record}, request.explain ? tools::Forces::Watched : tools::Forces::Unwatched);
  const SilencedLog silenced;
  tools::LibraryLog log;
  NotedReading reading(reader, request.skipBad);

  play(reading, reader, session, outcome, check);
  session.finish();

  outcome.length = session.length();
  outcome.error = reading.error();
  outcome.warnings = reading.warnings();
  if (const std::string skipped = reading.skippedText(); !skipped.empty())
    outcome.warnings.push_back(skipped);
  if (const std::string leftOut = session.takeLeftOut(); !leftOut.empty())
    outcome.warnings.push_back(leftOut);
  add(outcome.warnings, log.take());
}

}  // namespace

ReplayOutcome replay(const ReplayRequest& request, const std::function<void()>& check)
{
  ReplayOutcome outcome;
  outcome.name = request.session.name();
  try
  {
    const std::unique_ptr<tools::RecordingReader> reader = open(request);
    replay(request, *reader, outcome, check);
  }
  catch (const tools::RecordingError& error)
  {
    check();  // opening may fail for that reason alone
    outcome.error = error;
  }
  return outcome;
}

}  // namespace binding
