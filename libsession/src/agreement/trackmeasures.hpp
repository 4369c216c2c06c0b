#pragma once

#include "agreement/course.hpp"
#include "agreement/moments.hpp"

#include <skeigiot/session/agreementmeasure.hpp>

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// Measures of tracks: from their moments.
class TrackMeasures
{
public:
  using Unit = Moments;

  static Unit nothing() { return {}; }
  static std::vector<std::string> classes() { return {}; }

  /// Both sides change evenly in the piece of time, so its middle represents it.
  static void add(Unit& unit, double from, double to, const CoursePiece& first, const CoursePiece* second, int /*what*/,
                  double delay)
  {
    const double middle = 0.5 * (from + to);
    unit.add(first.valueAt(middle), second->valueAt(middle + delay), to - from);
  }

  static boost::optional<double> criterion(const Unit& unit) { return unit.ccc(); }
  static std::vector<AgreementMeasure> measures(const Unit& unit);
  static std::vector<std::vector<double>> confusion(const Unit&) { return {}; }
};

}  // namespace KV::session
