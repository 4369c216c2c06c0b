#include <skeigiot/session/inquiry.hpp>

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/explainer.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

namespace KV::session
{

namespace
{

constexpr std::size_t mostPersonsNamed = 20;
constexpr Duration endOfTime(std::numeric_limits<Duration::rep>::max());

std::string secondsText(Duration duration)
{
  std::string text;
  appendExactSeconds(text, duration);
  return text + " s";
}

void noteProblems(const Inquiry& inquiry, const Outcome& outcome)
{
  if (!inquiry.note)
    return;
  for (const std::string& warning : outcome.warningLines())
    inquiry.note("warning: " + warning);
  if (outcome.badLines > 0)
    inquiry.note(inquiry.name + ": " + outcome.skippedText());
  if (!outcome.leftOut.empty())
    inquiry.note("warning: " + inquiry.name + ": " + outcome.leftOut);
  for (const std::string& line : outcome.libraryWarnings)
    inquiry.note(inquiry.name + ": " + line);
}

/// Plays until that time is over and the person was seen, or to the end; returns how much was played. Only at the end
/// it is clear whether a person is the only one.
Duration playUntil(const Inquiry& inquiry, Explainer& explainer, Duration end)
{
  PlayerOptions options;
  options.skipBad = inquiry.skipBad;
  options.cycle = inquiry.cycle;
  const Player player(options, [&](const Progress& progress) {
    const bool isAnswered = progress.length > end && inquiry.person && explainer.persons().count(*inquiry.person) > 0;
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
    if (!updates.name.empty())
      text += " (" + updates.name + ")";
  }
  return text;
}

/// Returns the chosen person, and when they were updated.
std::pair<std::int32_t, Explainer::Updates> askedPerson(const Inquiry& inquiry, const Explainer& explainer)
{
  const auto& persons = explainer.persons();
  if (persons.empty())
    refuse(inquiry, "nobody was seen in this recording");
  if (!inquiry.person)
  {
    if (persons.size() > 1)
      refuse(inquiry, "there are several persons: " + listed(persons) + "; give the number of one of them" +
                          (inquiry.personName.empty() ? "" : " (" + inquiry.personName + ")"));
    return *persons.begin();
  }
  const auto found = persons.find(*inquiry.person);
  if (found == persons.end())
    refuse(inquiry, "there is no person " + std::to_string(*inquiry.person) + "; known are: " + listed(persons));
  return *found;
}

std::string personText(std::int32_t person)
{
  return "person " + std::to_string(person);
}

/// By how much the update changed the estimates: of two updates, the one with the greater result changed them more. A
/// change from an unknown estimate counts less than any other.
std::tuple<double, double> changeBy(const Explanation& update)
{
  double known = 0.;
  double unknown = 0.;
  const auto add = [&](float before, float after, bool wasKnown) {
    double& greatest = wasKnown ? known : unknown;
    greatest = std::max(greatest, std::abs(static_cast<double>(after) - static_cast<double>(before)));
  };
  const Snapshot& before = update.before;
  const Snapshot& after = update.after;
  add(before.valence.value, after.valence.value, before.isValenceKnown());
  add(before.attention.value, after.attention.value, before.isAttentionKnown());
  return {known, unknown};
}

}  // namespace

Explanation explainMoment(const Inquiry& inquiry, Duration at)
{
  std::map<std::int32_t, Explanation> moments;
  Explainer explainer(inquiry.person, [&](Explanation explanation) {
    if (explanation.after.sinceStart <= at)
      moments[explanation.after.person] = std::move(explanation);
  });
  const Duration length = playUntil(inquiry, explainer, at);
  const auto [person, updates] = askedPerson(inquiry, explainer);
  refuseTimeOutside(inquiry, at, length);
  const auto moment = moments.find(person);
  if (moment == moments.end())
    refuse(inquiry, personText(person) + " is not known at " + secondsText(at) + ", but from " +
                        secondsText(updates.first) + " on");
  return std::move(moment->second);
}

Explanation explainGreatestChange(const Inquiry& inquiry)
{
  std::map<std::int32_t, Explanation> greatest;
  Explainer explainer(inquiry.person, [&](Explanation explanation) {
    const auto [known, isNew] = greatest.try_emplace(explanation.after.person, explanation);
    if (!isNew && changeBy(explanation) > changeBy(known->second))
      known->second = std::move(explanation);
  });
  playUntil(inquiry, explainer, endOfTime);
  const auto [person, updates] = askedPerson(inquiry, explainer);
  return std::move(greatest.at(person));
}

SpanExplanation explainSpan(const Inquiry& inquiry, Duration from, const boost::optional<Duration>& to)
{
  const Duration last = to.value_or(endOfTime);
  std::map<std::int32_t, SpanExplanation> spans;
  Explainer explainer(inquiry.person, [&](const Explanation& explanation) {
    if (from <= explanation.after.sinceStart && explanation.after.sinceStart <= last)
      spans[explanation.after.person].add(explanation);
  });
  const Duration length = playUntil(inquiry, explainer, last);
  const auto [person, updates] = askedPerson(inquiry, explainer);
  refuseTimeOutside(inquiry, from, length);
  refuseTimeOutside(inquiry, to.value_or(length), length);
  const auto span = spans.find(person);
  if (span == spans.end())
    refuse(inquiry, personText(person) + " was not updated from " + secondsText(from) + " to " +
                        secondsText(to.value_or(length)) + ", but from " + secondsText(updates.first) + " to " +
                        secondsText(updates.last));
  return std::move(span->second);
}

}  // namespace KV::session
