#include <skeigiot/session/inquiry.hpp>

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/explainer.hpp>

#include <cstddef>
#include <limits>
#include <utility>

namespace KV::session
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

void noteProblems(const Inquiry& inquiry, const Outcome& outcome)
{
  for (const std::string& warning : outcome.warningLines())
    inquiry.note("warning: " + warning);
  if (outcome.badLines > 0)
    inquiry.note(inquiry.name + ": " + outcome.skippedText());
  if (!outcome.leftOut.empty())
    inquiry.note("warning: " + inquiry.name + ": " + outcome.leftOut);
  for (const std::string& line : outcome.libraryWarnings)
    inquiry.note(inquiry.name + ": " + line);
}

/// Plays until that time is over and the person was seen, or to the end; returns how much was played.
Duration playUntil(const Inquiry& inquiry, Explainer& explainer, Duration end)
{
  PlayerOptions options;
  options.skipBad = inquiry.skipBad;
  options.cycle = inquiry.cycle;
  const Player player(options, [&](const Progress& progress) {
    const bool isAnswered = progress.length > end && explainer.persons().count(inquiry.person) > 0;
    return (!inquiry.goOn || inquiry.goOn(progress)) && !isAnswered;
  });
  const Outcome outcome = player.play(inquiry.open, {&explainer});
  noteProblems(inquiry, outcome);
  if (outcome.error)
    throw recordings::Error(*outcome.error);
  return outcome.length;
}

[[noreturn]] void refuse(const Inquiry& inquiry, const std::string& text)
{
  throw recordings::Error({inquiry.name, 0, {}}, text);
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
  const Duration length = playUntil(inquiry, explainer, at);
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
  const Duration length = playUntil(inquiry, explainer, last);
  const Explainer::Updates updates = updatesOfPerson(inquiry, explainer);
  refuseTimeOutside(inquiry, from, length);
  refuseTimeOutside(inquiry, to.value_or(length), length);
  if (span.updates == 0)
    refuse(inquiry, personText(inquiry) + " was not updated from " + secondsText(from) + " to " +
                        secondsText(to.value_or(length)) + ", but from " + secondsText(updates.first) + " to " +
                        secondsText(updates.last));
  return span;
}

}  // namespace KV::session
