#pragma once

#include <skeigiot/expressions.hpp>
#include <skeigiot/recordings/restingface.hpp>
#include <skeigiot/smile.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// A weight, and the scores whose mean is multiplied by it.
struct ScoreTerm
{
  float weight = 1.f;
  std::vector<std::string> of;  ///< names of scores
};

/// A reading as the sum of its terms, within [0, 1], and, if a limit is given, no greater than the sum of the limit.
///
/// A term of a negative weight lowers the sum: it is left out where one of its scores is unknown. Any other unknown
/// score makes the reading unknown.
struct Composition
{
  std::vector<ScoreTerm> sum;  ///< empty: the table does not have the reading
  std::vector<ScoreTerm> limit;
};

/// The table from the scores of a front end to the readings of a face. It is a judgement, so users may change it.
struct ScoreTable
{
  Composition smile;
  Composition joy;
  Composition sorrow;
  Composition surprise;
  Composition anger;
  Composition laughter;
  Composition excitement;
  Composition calm;  ///< empty: the rest of one whole that joy, anger, sorrow and half of the surprise share

  std::map<std::string, RestingScore> rest;  ///< by name; others rest at 0
};

/// A column of the table, by its name.
struct ScoreTableMember
{
  const char* name;
  Composition ScoreTable::*composition;
};

/// Returns all members of a table.
const std::array<ScoreTableMember, 8>& scoreTableMembers();

/// Returns by how much a score is above its rest, at least 0; NaN for a score of NaN, which is unknown.
inline float aboveRest(float score, float rest)
{
  return std::isnan(score) ? score : std::max(0.f, score - rest);
}

/// Computes the readings of a face from its scores, by a table.
class ScoreReadings
{
public:
  explicit ScoreReadings(const ScoreTable& table);

  /// Returns the names of the scores that the table needs, each once.
  const std::vector<std::string>& names() const { return _names; }

  /// Returns these scores at rest, in the order of names().
  const std::vector<RestingScore>& rest() const { return _rest; }

  /// Returns the smile with this confidence, or nothing if it is unknown.
  ///
  /// `scores` are in the order of names(), each in [0, 1], or NaN if it is unknown.
  std::optional<KV::Smile> smile(const std::vector<float>& scores, float confidence) const;

  /// Returns the expressions with this confidence each, and confidence 0 where a score is unknown or the table does not
  /// have the expression; nothing if all are unknown.
  ///
  /// Without a table of its own, calm is the rest of one whole: joy, anger, sorrow and half of the surprise share it,
  /// and are divided by their sum where the sum is greater.
  std::optional<KV::Expressions> expressions(const std::vector<float>& scores, float confidence) const;

private:
  using Expression = KV::ValueConfidence<float> KV::Expressions::*;

  struct Term
  {
    float weight;
    std::vector<std::size_t> scores;
  };
  using Sum = std::vector<Term>;

  struct Formula
  {
    Expression expression;
    Sum sum;
    Sum limit;
  };

  Sum _indexed(const std::vector<ScoreTerm>& terms);
  Formula _indexed(Expression expression, const Composition& composition);
  static float _sumOf(const Sum& sum, const std::vector<float>& scores);
  static float _strengthOf(const Formula& formula, const std::vector<float>& scores);
  static void _share(KV::Expressions& expressions, float confidence);

  std::vector<std::string> _names;
  std::vector<RestingScore> _rest;
  Formula _smile;
  std::vector<Formula> _expressions;  // those in the table
  bool _calmIsTheRest = true;
};

}  // namespace KV::recordings
