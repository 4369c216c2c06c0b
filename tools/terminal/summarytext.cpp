#include "terminal/summarytext.hpp"

#include "terminal/shown.hpp"
#include "terminal/text.hpp"
#include "terminal/zonewords.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

constexpr std::size_t labelWidth = 11;
constexpr std::size_t textColumn = 2 + labelWidth;

std::string labelled(const std::string& label, const std::string& text, const Style& style)
{
  return "  " + style.dim(padRight(label, labelWidth)) + text + "\n";
}

using Shares = std::vector<std::pair<std::string, double>>;

/// "at the robot 80 %, down 20 %": the largest first, without those of 0 %.
std::string listed(Shares shares)
{
  std::stable_sort(shares.begin(), shares.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
  std::string text;
  for (const auto& [name, share] : shares)
  {
    if (share > 0.)
      text += (text.empty() ? "" : ", ") + name + " " + session::percentage(share);
  }
  return text;
}

Shares zoneShares(const session::PersonSummary& summary)
{
  Shares shares;
  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
  {
    const auto state = static_cast<ko::human::AttentionState>(zone);
    shares.emplace_back(zoneWords(state), summary.share(state));
  }
  return shares;
}

Shares pleasureShares(const session::PersonSummary& summary)
{
  Shares shares;
  for (const KV::PleasureState pleasure :
       {KV::PleasurePositive, KV::PleasureNeutral, KV::PleasureNegative, KV::PleasureUnknown})
    shares.emplace_back(session::pleasureName(pleasure), summary.share(pleasure));
  return shares;
}

const char* const unknown = "unknown: no evidence in the recording";

std::string valenceText(const session::PersonSummary& summary)
{
  if (!summary.isValenceKnown())
    return unknown;
  return session::signedNumber(summary.valence()) + " on average, with confidence " +
         session::plainNumber(summary.valenceConfidence());
}

std::string attentionText(const session::PersonSummary& summary)
{
  if (!summary.isAttentionKnown())
    return unknown;
  return " " + session::plainNumber(summary.attention()) + " on average, with confidence " +
         session::plainNumber(summary.attentionConfidence());
}

std::string engagedText(const session::PersonSummary& summary)
{
  if (!summary.isAttentionKnown())
    return unknown;
  return session::percentage(summary.lookingAtRobotShare()) + " of the time (attention from " +
         session::plainNumber(static_cast<double>(KV::PersonState::getBinaryBoundaryLookingAtRobot())) +
         "), strictly " + session::percentage(summary.strictlyLookingAtRobotShare()) + " (from " +
         session::plainNumber(static_cast<double>(KV::PersonState::getBinaryBoundaryStrictlyLookingAtRobot())) + ")";
}

std::string coloredVerdict(const std::string& text, const std::string& word, const Style& style)
{
  if (word == "positive")
    return style.green(text);
  if (word == "negative" || word == "error")
    return style.red(text);
  return text;
}

/// The times of the scope, and how it ended.
std::string circumstances(const session::ScopeVerdict& verdict, std::size_t updates)
{
  const std::string from = session::clockText(verdict.from);
  if (verdict.end == session::ScopeEnd::NotReached)
    return "from " + from + ": the recording ended before";
  if (verdict.end == session::ScopeEnd::NotOpen)
    return "at " + from + ": stopped, but not started";

  std::string text = from + " to " + session::clockText(verdict.to) + ", " + session::counted(updates, "update");
  if (verdict.end == session::ScopeEnd::NotStopped)
    text += ", not stopped";
  if (verdict.end == session::ScopeEnd::CutShort)
    text += ", cut short by the end";
  if (updates == 0)
    text += ", which counts as neutral";
  return text;
}

std::string describe(const session::ScopeVerdict& verdict, std::int32_t person, const Style& style)
{
  const session::ScopeVerdict::OfPerson ofPerson = verdict.of(person);
  return style.bold(coloredVerdict(padRight(ofPerson.word, 8), ofPerson.word, style)) + "  " +
         shown(recordings::quote(verdict.name)) + " (" + circumstances(verdict, ofPerson.updates) + ")";
}

}  // namespace

std::string summaryText(const session::Summary& all, std::int32_t person, int width, const Style& style)
{
  const session::PersonSummary& summary = all.persons().at(person);
  std::string text;
  text += labelled("span",
                   session::clockText(summary.from()) + " to " + session::clockText(summary.to()) + ", " +
                       session::counted(summary.updates(), "update") + ", seen for " +
                       session::percentage(summary.seenShare()) + " of the time",
                   style);
  text += labelled("valence", valenceText(summary), style);
  text += labelled("attention", attentionText(summary), style);
  text += labelled("engaged", engagedText(summary), style);
  Shares zones = zoneShares(summary);
  zones.emplace_back("not visible", 1. - summary.seenShare());
  text += labelled("looking", wrapped(listed(zones), static_cast<std::size_t>(width) - textColumn, textColumn), style);
  text += labelled("pleasure", listed(pleasureShares(summary)), style);
  const char* label = "verdict";
  for (const session::ScopeVerdict& verdict : all.verdicts())
  {
    text += labelled(label, describe(verdict, person, style), style);
    label = "";
  }
  return text;
}

std::string ambianceText(const session::Summary::Ambiance& ambiance, const Style& style)
{
  if (ambiance.updates == 0)
    return {};
  const auto updates = static_cast<double>(ambiance.updates);
  return style.bold("Room") + "\n" +
         labelled("ambiance",
                  "agitation " + session::plainNumber(ambiance.agitation / updates) + " on average and " +
                      session::plainNumber(static_cast<double>(ambiance.lastAgitation)) + " at the end, excited in " +
                      session::percentage(static_cast<double>(ambiance.excited) / updates) + " of " +
                      session::counted(ambiance.updates, "update"),
                  style);
}

}  // namespace KV::tools
