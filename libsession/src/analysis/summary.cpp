#include "summary.hpp"

#include "names.hpp"
#include "quote.hpp"
#include "text.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

namespace tools
{

namespace
{

constexpr double longestHold = 1.;      // [s]
constexpr double holdOfASingle = 1e-3;  // [s]; any time does where there is no other to weigh it against

constexpr std::size_t labelWidth = 11;
constexpr std::size_t textColumn = 2 + labelWidth;

double secondsOf(Duration duration)
{
  return static_cast<double>(duration.count()) * 1e-9;
}

std::string labelled(const std::string& label, const std::string& text, const Style& style)
{
  return "  " + style.dim(padRight(label, labelWidth)) + text + "\n";
}

using Shares = std::vector<std::pair<std::string, double>>;

/// "LookingAtRobot 80 %, LookingDown 20 %": the largest first, without those that never were.
std::string listed(Shares shares)
{
  std::stable_sort(shares.begin(), shares.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
  std::string text;
  for (const auto& [name, share] : shares)
  {
    if (share > 0.)
      text += (text.empty() ? "" : ", ") + name + " " + percentage(share);
  }
  return text;
}

Shares zoneShares(const PersonSummary& summary)
{
  Shares shares;
  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
  {
    const auto state = static_cast<ko::human::AttentionState>(zone);
    shares.emplace_back(zoneName(state), summary.share(state));
  }
  return shares;
}

Shares pleasureShares(const PersonSummary& summary)
{
  Shares shares;
  for (const KV::PleasureState pleasure :
       {KV::PleasurePositive, KV::PleasureNeutral, KV::PleasureNegative, KV::PleasureUnknown})
    shares.emplace_back(pleasureName(pleasure), summary.share(pleasure));
  return shares;
}

std::string coloredVerdict(const std::string& text, const std::string& word, const Style& style)
{
  if (word == "positive")
    return style.green(text);
  if (word == "negative" || word == "error")
    return style.red(text);
  return text;
}

/// Where the scope lies, and what there is to say of its end.
std::string circumstances(const ScopeVerdict& verdict, std::size_t updates)
{
  const std::string from = clockText(verdict.from);
  if (verdict.end == ScopeEnd::NotReached)
    return "from " + from + ": the recording ended before";
  if (verdict.end == ScopeEnd::NotOpen)
    return "at " + from + ": stopped, but not started";

  std::string text = from + " to " + clockText(verdict.to) + ", " + counted(updates, "update");
  if (verdict.end == ScopeEnd::NotStopped)
    text += ", not stopped";
  if (verdict.end == ScopeEnd::CutShort)
    text += ", cut short by the end";
  if (updates == 0)
    text += ", which counts as neutral";
  return text;
}

std::string describe(const ScopeVerdict& verdict, std::int32_t person, const Style& style)
{
  const ScopeVerdict::OfPerson ofPerson = verdict.of(person);
  return style.bold(coloredVerdict(padRight(ofPerson.word, 8), ofPerson.word, style)) + "  " + quote(verdict.name) +
         " (" + circumstances(verdict, ofPerson.updates) + ")";
}

bool comesFirst(const ScopeVerdict& left, const ScopeVerdict& right)
{
  return std::make_tuple(left.from, -left.to) < std::make_tuple(right.from, -right.to);
}

}  // namespace

void PersonSummary::add(const Snapshot& snapshot)
{
  if (_last)
  {
    _lastInterval = secondsOf(snapshot.sinceStart - _last->sinceStart);
    _countLast(_lastInterval);
  }
  else
    _from = snapshot.sinceStart;
  _last = snapshot;
  ++_updates;
}

void PersonSummary::finish()
{
  const bool single = _time == 0.;
  _countLast(single ? holdOfASingle : _lastInterval);
}

double PersonSummary::share(ko::human::AttentionState zone) const
{
  return _zones.at(static_cast<std::size_t>(zone)) / _time;
}

double PersonSummary::share(KV::PleasureState pleasure) const
{
  return _pleasures.at(static_cast<std::size_t>(pleasure)) / _time;
}

void PersonSummary::_countLast(double seconds)
{
  const double held = std::min(seconds, longestHold);
  _time += held;
  _valence += held * static_cast<double>(_last->valence.value);
  _valenceConfidence += held * static_cast<double>(_last->valence.confidence);
  _attention += held * static_cast<double>(_last->attention.value);
  _attentionConfidence += held * static_cast<double>(_last->attention.confidence);
  _pleasures.at(static_cast<std::size_t>(_last->pleasure)) += held;
  if (!_last->seen)
    return;
  _seen += held;
  if (_last->attention.value >= KV::PersonState::getBinaryBoundaryLookingAtRobot())
    _lookingAtRobot += held;
  if (_last->attention.value >= KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot())
    _strictlyLookingAtRobot += held;
  _zones.at(static_cast<std::size_t>(_last->zone)) += held;
}

void Summary::personUpdated(const Snapshot& snapshot)
{
  _persons[snapshot.person].add(snapshot);
}

void Summary::ambianceUpdated(float agitation, KV::ExcitationState excitation)
{
  ++_ambiance.updates;
  _ambiance.excited += excitation == KV::AmbianceExcited ? 1 : 0;
  _ambiance.agitation += static_cast<double>(agitation);
  _ambiance.lastAgitation = agitation;
}

void Summary::scopeJudged(const ScopeVerdict& verdict)
{
  _verdicts.push_back(verdict);
}

void Summary::finish()
{
  for (auto& [person, summary] : _persons)
    summary.finish();
  std::stable_sort(_verdicts.begin(), _verdicts.end(), comesFirst);
}

std::string Summary::describe(std::int32_t person, int width, const Style& style) const
{
  const PersonSummary& summary = _persons.at(person);
  std::string text;
  text += labelled("span",
                   clockText(summary.from()) + " to " + clockText(summary.to()) + ", " +
                       counted(summary.updates(), "update") + ", seen for " + percentage(summary.seenShare()) +
                       " of the time",
                   style);
  text += labelled(
      "valence",
      signedNumber(summary.valence()) + " on average, with confidence " + plainNumber(summary.valenceConfidence()),
      style);
  text += labelled("attention",
                   " " + plainNumber(summary.attention()) + " on average, with confidence " +
                       plainNumber(summary.attentionConfidence()),
                   style);
  text +=
      labelled("engaged",
               percentage(summary.lookingAtRobotShare()) + " of the time (attention from " +
                   plainNumber(static_cast<double>(KV::PersonState::getBinaryBoundaryLookingAtRobot())) +
                   "), strictly " + percentage(summary.strictlyLookingAtRobotShare()) + " (from " +
                   plainNumber(static_cast<double>(KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot())) + ")",
               style);
  Shares zones = zoneShares(summary);
  zones.emplace_back("not visible", 1. - summary.seenShare());
  text += labelled("zone", wrapped(listed(zones), static_cast<std::size_t>(width) - textColumn, textColumn), style);
  text += labelled("pleasure", listed(pleasureShares(summary)), style);
  const char* label = "verdict";
  for (const ScopeVerdict& verdict : _verdicts)
  {
    text += labelled(label, tools::describe(verdict, person, style), style);
    label = "";
  }
  return text;
}

std::string Summary::describeAmbiance(const Style& style) const
{
  if (_ambiance.updates == 0)
    return {};
  const auto updates = static_cast<double>(_ambiance.updates);
  return style.bold("Room") + "\n" +
         labelled("ambiance",
                  "agitation " + plainNumber(_ambiance.agitation / updates) + " on average and " +
                      plainNumber(static_cast<double>(_ambiance.lastAgitation)) + " at the end, excited in " +
                      percentage(static_cast<double>(_ambiance.excited) / updates) + " of " +
                      counted(_ambiance.updates, "update"),
                  style);
}

}  // namespace tools
