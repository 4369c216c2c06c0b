#pragma once

#include <skeigiot/session/personcourse.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Why a side has nothing to compare.
enum Silence : int
{
  NoLabel = -1,
  Contradiction = -2,
  NotSeen = -3,
  UnknownEstimate = -4
};

/// A span of time, and one side's class or values in it.
struct CoursePiece
{
  double from = 0.;  // [s]
  double to = 0.;    // [s]
  int what = 0;      // a class, 0 for a value, or a Silence
  double valueFrom = 0.;
  double valueTo = 0.;

  /// Returns the value at that time: it changes evenly.
  double valueAt(double time) const
  {
    const double length = to - from;
    return length > 0. ? valueFrom + (time - from) / length * (valueTo - valueFrom) : valueFrom;
  }
};

/// Pieces by time, which do not overlap. Between them the side has no value.
using Course = std::vector<CoursePiece>;

/// Returns the estimate of the quantity, an index in labelQuantities(), as pieces of the person's course.
Course estimatedClasses(const PersonCourse& course, std::size_t quantity);

/// Returns the estimate of "valence" or "attention" as pieces of the person's course.
Course estimatedValues(const PersonCourse& course, const std::string& quantity);

/// Makes a course of pieces in any order. Where some overlap with different values, there is a contradiction.
Course withoutOverlaps(std::vector<CoursePiece> pieces);

/// Returns the course in the pieces of another, with `between` where it has no piece.
Course within(const Course& course, const Course& pieces, int between);

/// Calls `visit(from, to, first, second)` for all time of the first course, cut so that nothing changes in between:
/// with the piece of the first, and with that of the second that is later by `delay`, or nullptr.
template <typename Visit>
void sweep(const Course& first, const Course& second, double delay, Visit&& visit)
{
  std::size_t next = 0;
  for (const CoursePiece& piece : first)
  {
    double time = piece.from;
    while (next < second.size() && second[next].to - delay <= time)
      ++next;
    for (std::size_t other = next; time < piece.to;)
    {
      const bool isThere = other < second.size();
      const double begin = isThere ? second[other].from - delay : std::numeric_limits<double>::infinity();
      if (begin > time)
      {
        const double end = std::min(piece.to, begin);
        visit(time, end, piece, static_cast<const CoursePiece*>(nullptr));
        time = end;
        continue;
      }
      const double end = std::min(piece.to, second[other].to - delay);
      if (end > time)
        visit(time, end, piece, &second[other]);
      time = std::max(time, end);
      ++other;
    }
  }
}

}  // namespace KV::session
