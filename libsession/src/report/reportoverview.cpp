#include "report/reportoverview.hpp"

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <array>
#include <limits>

namespace KV::session
{

namespace
{

const boost::chrono::seconds longestHold(1);  // how long an update holds without a next one, as in a summary

/// Collects the means of the stretches of a recording.
class Means
{
public:
  explicit Means(Duration length) : _length(std::max<Duration::rep>(length.count(), 1)) {}

  /// Adds a value that holds from one time to another.
  void add(Duration from, Duration to, float value)
  {
    const std::size_t last = _stretchOf(std::max(from, to - Duration(1)));
    for (std::size_t stretch = _stretchOf(from); stretch <= last; ++stretch)
    {
      _sums.at(stretch).values += static_cast<double>(value);
      ++_sums.at(stretch).count;
    }
  }

  std::vector<float> all() const
  {
    std::vector<float> means;
    for (const Sum& sum : _sums)
      means.push_back(sum.count > 0 ? static_cast<float>(sum.values / sum.count)
                                    : std::numeric_limits<float>::quiet_NaN());
    return means;
  }

private:
  std::size_t _stretchOf(Duration time) const
  {
    const double share = static_cast<double>(time.count()) / static_cast<double>(_length);
    const auto stretch = static_cast<std::size_t>(share * static_cast<double>(ReportOverview::stretches));
    return std::min(stretch, ReportOverview::stretches - 1);
  }

  struct Sum
  {
    double values = 0.;
    int count = 0;
  };

  Duration::rep _length;
  std::array<Sum, ReportOverview::stretches> _sums{};
};

}  // namespace

ReportOverview overviewOf(const ReportRecorder& recorder)
{
  ReportOverview overview;
  overview.length = recorder.inspection().length();
  for (const auto& [number, moments] : recorder.moments())
  {
    Means valence(overview.length);
    Means attention(overview.length);
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
