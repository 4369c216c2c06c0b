#include "face/scoretable.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace KV::recordings
{
namespace
{
struct ExpressionMember
{
  KV::ValueConfidence<float> KV::Expressions::*expression;
  Composition ScoreTable::*composition;
};

constexpr std::array<ExpressionMember, 7> expressionMembers = {{
    {&KV::Expressions::joy, &ScoreTable::joy},
    {&KV::Expressions::sorrow, &ScoreTable::sorrow},
    {&KV::Expressions::surprise, &ScoreTable::surprise},
    {&KV::Expressions::anger, &ScoreTable::anger},
    {&KV::Expressions::laughter, &ScoreTable::laughter},
    {&KV::Expressions::excitement, &ScoreTable::excitement},
    {&KV::Expressions::calm, &ScoreTable::calm},
}};

}  // namespace

const std::array<ScoreTableMember, 8>& scoreTableMembers()
{
  static const std::array<ScoreTableMember, 8> members = {{
      {"smile", &ScoreTable::smile},
      {"joy", &ScoreTable::joy},
      {"sorrow", &ScoreTable::sorrow},
      {"surprise", &ScoreTable::surprise},
      {"anger", &ScoreTable::anger},
      {"laughter", &ScoreTable::laughter},
      {"excitement", &ScoreTable::excitement},
      {"calm", &ScoreTable::calm},
  }};
  return members;
}

ScoreReadings::ScoreReadings(const ScoreTable& table)
  : _smile(_indexed(nullptr, table.smile)), _calmIsTheRest(table.calm.sum.empty())
{
  for (const ExpressionMember& member : expressionMembers)
    if (const Composition& composition = table.*member.composition; !composition.sum.empty())
      _expressions.push_back(_indexed(member.expression, composition));
  for (const std::string& name : _names)
  {
    const auto found = table.rest.find(name);
    _rest.push_back(found == table.rest.end() ? RestingScore() : found->second);
  }
}

std::optional<KV::Smile> ScoreReadings::smile(const std::vector<float>& scores, float confidence) const
{
  if (_smile.sum.empty())
    return {};
  const float degree = _strengthOf(_smile, scores);
  if (std::isnan(degree))
    return {};
  return KV::Smile(degree, confidence);
}

std::optional<KV::Expressions> ScoreReadings::expressions(const std::vector<float>& scores, float confidence) const
{
  KV::Expressions expressions;
  bool anyKnown = false;
  for (const Formula& formula : _expressions)
  {
    const float strength = _strengthOf(formula, scores);
    if (std::isnan(strength))
      continue;
    expressions.*formula.expression = {strength, confidence};
    anyKnown = true;
  }

  if (!anyKnown)
    return {};
  if (_calmIsTheRest)
    _share(expressions, confidence);
  return expressions;
}

// The mood classes expect scores that share one whole: an angry face has little calm. A surprised face is neither; it
// takes half, since a face that is not calm and has no other score would count as negative. Laughter is a kind of joy,
// and takes no share of its own.
void ScoreReadings::_share(KV::Expressions& expressions, float confidence)
{
  const float others =
      expressions.joy.value + expressions.anger.value + expressions.sorrow.value + expressions.surprise.value / 2.f;
  const float whole = std::max(others, 1.f);
  for (const Expression sharing :
       {&KV::Expressions::joy, &KV::Expressions::anger, &KV::Expressions::sorrow, &KV::Expressions::surprise})
    (expressions.*sharing).value /= whole;
  expressions.calm = {1.f - others / whole, confidence};
}

ScoreReadings::Sum ScoreReadings::_indexed(const std::vector<ScoreTerm>& terms)
{
  Sum sum;
  for (const ScoreTerm& term : terms)
  {
    sum.push_back({term.weight, {}});
    for (const std::string& name : term.of)
    {
      const auto found = std::find(_names.begin(), _names.end(), name);
      sum.back().scores.push_back(static_cast<std::size_t>(std::distance(_names.begin(), found)));
      if (found == _names.end())
        _names.push_back(name);
    }
  }
  return sum;
}

ScoreReadings::Formula ScoreReadings::_indexed(Expression expression, const Composition& composition)
{
  return {expression, _indexed(composition.sum), _indexed(composition.limit)};
}

// NaN if one of the added scores is unknown.
float ScoreReadings::_sumOf(const Sum& sum, const std::vector<float>& scores)
{
  float total = 0.f;
  for (const Term& term : sum)
  {
    float termTotal = 0.f;
    for (const std::size_t score : term.scores)
      termTotal += scores.at(score);
    if (term.weight < 0.f && std::isnan(termTotal))
      continue;
    total += term.weight * (termTotal / static_cast<float>(term.scores.size()));
  }
  return total;
}

float ScoreReadings::_strengthOf(const Formula& formula, const std::vector<float>& scores)
{
  float strength = _sumOf(formula.sum, scores);
  if (!formula.limit.empty())
  {
    const float limit = _sumOf(formula.limit, scores);
    strength = std::isnan(limit) ? limit : std::min(strength, limit);
  }
  return std::clamp(strength, 0.f, 1.f);  // keeps a NaN
}

}  // namespace KV::recordings
