#include <skeigiot/session/labelscopes.hpp>

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/signallimits.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

using recordings::LabelSpan;

constexpr double latest = 8e9;  // [s] far beyond any recording; whole nanoseconds of it fit a Duration

Duration durationOf(double seconds)
{
  return Duration(static_cast<Duration::rep>(std::llround(std::clamp(seconds, 0., latest) * 1e9)));
}

/// Returns the tier of a label or, without one, its person.
const std::string& groupOf(const LabelSpan& span)
{
  return span.tier.empty() ? span.person : span.tier;
}

std::string groupsIn(const recordings::Labels& labels)
{
  constexpr std::size_t mostNamed = 8;
  std::set<std::string> names;
  for (const LabelSpan& span : labels.spans)
    for (const std::string& name : {span.tier, span.person})
      if (!name.empty())
        names.insert(name);
  std::string text;
  std::size_t count = 0;
  for (const std::string& name : names)
  {
    if (++count > mostNamed)
      return text + ", ...";
    text += (text.empty() ? "" : ", ") + recordings::quote(name);
  }
  return text.empty() ? "no tiers" : text;
}

std::vector<const LabelSpan*> chosen(const recordings::Labels& labels, const LabelScopes& from)
{
  std::vector<const LabelSpan*> spans;
  for (const LabelSpan& span : labels.spans)
    if (from.tier.empty() || span.tier == from.tier || span.person == from.tier)
      spans.push_back(&span);
  if (spans.empty() && !from.tier.empty())
    throw recordings::Error({from.path, 0, {}},
                            "has no label of tier " + recordings::quote(from.tier) + "; it has " + groupsIn(labels));
  return spans;
}

/// Returns the greatest number of scopes that hold one moment.
std::size_t mostAtOnce(const std::vector<ScopeSpan>& scopes)
{
  std::vector<std::pair<Duration, int>> changes;  // at one time, the beginnings come before the ends
  for (const ScopeSpan& scope : scopes)
  {
    changes.emplace_back(scope.from, -1);
    changes.emplace_back(*scope.to, 1);
  }
  std::sort(changes.begin(), changes.end());
  std::ptrdiff_t open = 0;
  std::ptrdiff_t most = 0;
  for (const auto& [time, change] : changes)
    most = std::max(most, open -= change);
  return static_cast<std::size_t>(most);
}

bool isFile(const std::string& path)
{
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace

LabelScopes parseLabelScopes(const std::string& text)
{
  for (std::size_t colon = text.find(':'); colon != std::string::npos; colon = text.find(':', colon + 1))
    if (isFile(text.substr(0, colon)))
      return {text.substr(0, colon), text.substr(colon + 1)};
  return {text, {}};
}

std::vector<ScopeSpan> scopesOf(const recordings::Labels& labels, const LabelScopes& from, double offset,
                                std::vector<std::string>& warnings)
{
  const std::vector<const LabelSpan*> spans = chosen(labels, from);
  std::set<std::string> groups;
  for (const LabelSpan* span : spans)
    groups.insert(groupOf(*span));
  std::size_t points = 0;
  std::size_t early = 0;
  std::vector<ScopeSpan> scopes;
  for (const LabelSpan* span : spans)
  {
    if (span->to <= span->from)
      ++points;
    else if (span->to + offset <= 0.)
      ++early;
    else
    {
      const std::string& group = groupOf(*span);
      const std::string label = span->label.empty() ? "(no text)" : span->label;
      scopes.push_back({groups.size() < 2 || group.empty() ? label : std::string(group).append(": ").append(label),
                        durationOf(span->from + offset), durationOf(span->to + offset)});
    }
  }
  if (scopes.size() > recordings::limits::mostScopesOfLabels)
    throw recordings::Error({from.path, 0, {}}, "has " + counted(scopes.size(), "label") +
                                                    " with a duration, expected " +
                                                    std::to_string(recordings::limits::mostScopesOfLabels) +
                                                    " at most: name one of its tiers");
  if (const std::size_t most = mostAtOnce(scopes); most > recordings::limits::mostLabelsAtOnce)
    throw recordings::Error({from.path, 0, {}}, "has " + counted(most, "label") + " at one time, expected " +
                                                    std::to_string(recordings::limits::mostLabelsAtOnce) +
                                                    " at most: name one of its tiers");
  if (scopes.empty())
    throw recordings::Error({from.path, 0, {}}, "has no label with a duration in the recording, so no scope");
  if (points > 0)
    warnings.push_back(counted(points, "label") + " without duration left out: a scope needs a span");
  if (early > 0)
    warnings.push_back(counted(early, "label") + " before the start of the recording left out");
  return scopes;
}

}  // namespace KV::session
