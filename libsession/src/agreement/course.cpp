#include "agreement/course.hpp"

#include <skeigiot/session/labelmapping.hpp>
#include <skeigiot/session/names.hpp>

#include <set>

namespace KV::session
{

namespace
{

int indexOf(std::size_t quantity, const std::string& state)
{
  const std::vector<std::string>& classes = labelQuantities().at(quantity).classes;
  const auto found = std::find(classes.begin(), classes.end(), state);
  return found == classes.end() ? UnknownEstimate : static_cast<int>(found - classes.begin());
}

int estimatedClass(const PersonCourse::Piece& piece, std::size_t quantity)
{
  if (!piece.seen)
    return NotSeen;
  const std::string& name = labelQuantities().at(quantity).name;
  if (name == "pleasure")
    return indexOf(quantity, pleasureName(piece.pleasure));
  if (name == "zone")
    return indexOf(quantity, zoneName(piece.zone));
  return piece.attentionKnown ? indexOf(quantity, piece.engaged ? "engaged" : "not-engaged") : int{UnknownEstimate};
}

bool sayTheSame(const CoursePiece& left, const CoursePiece& right)
{
  return left.what == right.what && left.valueFrom == right.valueFrom && left.valueTo == right.valueTo;
}

/// The pieces at the present time of a sweep over their ends.
class HeldPieces
{
public:
  void begin(std::size_t index) { _held.insert(index); }
  void end(std::size_t index) { _held.erase(index); }
  bool empty() const { return _held.empty(); }

  CoursePiece piece(const std::vector<CoursePiece>& pieces, double from, double to) const
  {
    CoursePiece held = pieces[*_held.begin()];
    const bool agree =
        std::all_of(_held.begin(), _held.end(), [&](std::size_t other) { return sayTheSame(held, pieces[other]); });
    if (!agree)
      held.what = Contradiction;
    else
    {
      const CoursePiece whole = held;
      held.valueFrom = whole.valueAt(from);
      held.valueTo = whole.valueAt(to);
    }
    held.from = from;
    held.to = to;
    return held;
  }

private:
  std::set<std::size_t> _held;  // indices of the pieces
};

}  // namespace

Course estimatedClasses(const PersonCourse& course, std::size_t quantity)
{
  Course classes;
  classes.reserve(course.pieces().size());
  for (const PersonCourse::Piece& piece : course.pieces())
    classes.push_back({piece.from, piece.to, estimatedClass(piece, quantity), 0., 0.});
  return classes;
}

Course estimatedValues(const PersonCourse& course, const std::string& quantity)
{
  const bool isValence = quantity == "valence";
  Course values;
  values.reserve(course.pieces().size());
  for (const PersonCourse::Piece& piece : course.pieces())
  {
    const bool known = isValence ? piece.valenceKnown : piece.attentionKnown;
    const auto value = static_cast<double>(isValence ? piece.valence : piece.attention);
    const int what = !piece.seen ? int{NotSeen} : known ? 0 : int{UnknownEstimate};
    values.push_back({piece.from, piece.to, what, value, value});
  }
  return values;
}

Course withoutOverlaps(std::vector<CoursePiece> pieces)
{
  struct End
  {
    double time;
    bool begins;
    std::size_t index;
  };
  std::vector<End> ends;
  for (std::size_t i = 0; i < pieces.size(); ++i)
    if (pieces[i].to > pieces[i].from)
    {
      ends.push_back({pieces[i].from, true, i});
      ends.push_back({pieces[i].to, false, i});
    }
  std::sort(ends.begin(), ends.end(), [](const End& left, const End& right) {
    return std::make_pair(left.time, left.index) < std::make_pair(right.time, right.index);
  });
  Course course;
  HeldPieces held;
  for (std::size_t i = 0; i < ends.size(); ++i)
  {
    if (ends[i].begins)
      held.begin(ends[i].index);
    else
      held.end(ends[i].index);
    const bool lasts = i + 1 < ends.size() && ends[i + 1].time > ends[i].time;
    if (lasts && !held.empty())
      course.push_back(held.piece(pieces, ends[i].time, ends[i + 1].time));
  }
  return course;
}

Course within(const Course& course, const Course& pieces, int between)
{
  Course cut;
  sweep(pieces, course, 0., [&](double from, double to, const CoursePiece&, const CoursePiece* part) {
    if (part == nullptr)
      cut.push_back({from, to, between, 0., 0.});
    else
      cut.push_back({from, to, part->what, part->valueAt(from), part->valueAt(to)});
  });
  return cut;
}

}  // namespace KV::session
