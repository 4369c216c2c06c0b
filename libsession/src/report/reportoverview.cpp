#include "report/reportoverview.hpp"

#include "report/stretchmeans.hpp"

#include <boost/chrono/duration.hpp>

#include <algorithm>

namespace KV::session
{

namespace
{

const boost::chrono::seconds longestHold(1);  // how long an update counts if no next one follows, as in a summary

}  // namespace

ReportOverview overviewOf(const ReportRecorder& recorder)
{
  ReportOverview overview;
  overview.length = recorder.inspection().length();
  for (const auto& [number, moments] : recorder.moments())
  {
    StretchMeans valence(overview.length, ReportOverview::stretches);
    StretchMeans attention(overview.length, ReportOverview::stretches);
    for (std::size_t i = 0; i < moments.size(); ++i)
    {
      const Snapshot& snapshot = moments[i].snapshot;
      const Duration longest = snapshot.sinceStart + longestHold + 2 * recorder.stretch();
      const Duration to = i + 1 < moments.size() ? std::min(longest, moments[i + 1].snapshot.sinceStart) : longest;
      if (snapshot.isValenceKnown())
        valence.add(snapshot.sinceStart, std::min(to, overview.length), snapshot.valence.value);
      if (snapshot.isAttentionKnown())
        attention.add(snapshot.sinceStart, std::min(to, overview.length), snapshot.attention.value);
    }
    const std::string verdict = recorder.scopes().empty() ? "" : recorder.scopes().front().of(number).word;
    overview.persons.push_back(
        {number, verdict, recorder.summary().persons().at(number), valence.all(), attention.all()});
  }
  return overview;
}

}  // namespace KV::session
