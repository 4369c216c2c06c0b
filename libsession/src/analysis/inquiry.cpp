#include "inquiry.hpp"

#include "exactnumber.hpp"
#include "interruption.hpp"
#include "librarylog.hpp"
#include "notedreading.hpp"
#include "session.hpp"
#include "text.hpp"

#include <cstddef>
#include <limits>
#include <utility>

namespace tools
{

namespace
{

constexpr std::size_t mostPersonsNamed = 20;

std::string secondsText(Duration duration)
{
  std::string text;
  appendExactSeconds(text, duration);
  return text + " s";
}

/// Reads the recording of an inquiry into a session that watches forces.
class InquiryReading
{
public:
  InquiryReading(const Inquiry& inquiry, Explainer& explainer)
    : _inquiry(inquiry),
      _explainer(explainer),
      _session({}, {&explainer}, Forces::Watched),
      _reading(inquiry.reader, inquiry.skipBad)
  {}

  /// Plays until that time is over and the person was seen, or to the end; returns how much was played.
  Duration playUntil(Duration end)
  {
    boost::optional<RecordingEntry> entry;
    while (!_isAnswered(end) && _reading.next(entry) != NotedReading::Step::End)
    {
      if (entry)
        _session.play(*entry);
      Interruption::check();
    }
    _noteProblems();
    if (_reading.error())
      throw RecordingError(*_reading.error());
    return _session.length();
  }

private:
  bool _isAnswered(Duration end) const
  {
    return _session.length() > end && _explainer.persons().count(_inquiry.person) > 0;
  }

  void _noteProblems()
  {
    for (const std::string& warning : _reading.warnings())
      _inquiry.messages.note("warning: " + warning);
    const std::string skipped = _reading.skippedText();
    if (!skipped.empty())
      _inquiry.messages.note(_inquiry.name + ": " + skipped);
    const std::string leftOut = _session.takeLeftOut();
    if (!leftOut.empty())
      _inquiry.messages.note("warning: " + _inquiry.name + ": " + leftOut);
    for (const std::string& line : _log.take())
      _inquiry.messages.note(_inquiry.name + ": " + line);
  }

  const Inquiry& _inquiry;
  Explainer& _explainer;
  LibraryLog _log;
  Session _session;
  NotedReading _reading;
};

[[noreturn]] void refuse(const Inquiry& inquiry, const std::string& text)
{
  throw RecordingError({inquiry.name, 0, {}}, text);
}

void refuseTimeOutside(const Inquiry& inquiry, Duration time, Duration length)
{
  if (time > length)
    refuse(inquiry, secondsText(time) + " is outside the recording, which spans 0 s to " + secondsText(length));
}

std::string listed(const std::map<std::int32_t, Explainer::Updates>& persons)
{
  std::string text;
  std::size_t count = 0;
  for (const auto& [person, updates] : persons)
  {
    if (++count > mostPersonsNamed)
      return text + ", ... (" + std::to_string(persons.size()) + " in all)";
    text += (text.empty() ? "" : ", ") + std::to_string(person);
  }
  return text;
}

/// Returns when the person was updated.
Explainer::Updates updatesOfPerson(const Inquiry& inquiry, const Explainer& explainer)
{
  const auto& persons = explainer.persons();
  if (persons.empty())
    refuse(inquiry, "nobody was seen in this recording");
  const auto found = persons.find(inquiry.person);
  if (found == persons.end())
    refuse(inquiry, "there is no person " + std::to_string(inquiry.person) + "; known are: " + listed(persons));
  return found->second;
}

std::string personText(const Inquiry& inquiry)
{
  return "person " + std::to_string(inquiry.person);
}

}  // namespace

Explanation explainMoment(const Inquiry& inquiry, Duration at)
{
  boost::optional<Explanation> moment;
  Explainer explainer(inquiry.person, [&](Explanation explanation) {
    if (explanation.after.sinceStart <= at)
      moment = std::move(explanation);
  });
  const Duration length = InquiryReading(inquiry, explainer).playUntil(at);
  const Explainer::Updates updates = updatesOfPerson(inquiry, explainer);
  refuseTimeOutside(inquiry, at, length);
  if (!moment)
    refuse(inquiry, personText(inquiry) + " is not known at " + secondsText(at) + ", but from " +
                        secondsText(updates.first) + " on");
  return std::move(*moment);
}

SpanExplanation explainSpan(const Inquiry& inquiry, Duration from, const boost::optional<Duration>& to)
{
  const Duration last = to.value_or(Duration(std::numeric_limits<Duration::rep>::max()));
  SpanExplanation span;
  Explainer explainer(inquiry.person, [&](const Explanation& explanation) {
    if (from <= explanation.after.sinceStart && explanation.after.sinceStart <= last)
      span.add(explanation);
  });
  const Duration length = InquiryReading(inquiry, explainer).playUntil(last);
  const Explainer::Updates updates = updatesOfPerson(inquiry, explainer);
  refuseTimeOutside(inquiry, from, length);
  refuseTimeOutside(inquiry, to.value_or(length), length);
  if (span.updates == 0)
    refuse(inquiry, personText(inquiry) + " was not updated from " + secondsText(from) + " to " +
                        secondsText(to.value_or(length)) + ", but from " + secondsText(updates.first) + " to " +
                        secondsText(updates.last));
  return span;
}

}  // namespace tools
