#include "terminal/agreementtext.hpp"

#include "terminal/shown.hpp"
#include "terminal/texttable.hpp"

#include <skeigiot/session/wording.hpp>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

using session::AgreementAtDelay;
using session::AgreementComparison;
using session::AgreementMeasure;
using LeftOut = AgreementComparison::LeftOut;

constexpr double shortest = 0.05;  // [s] that a text mentions

constexpr std::array<std::pair<const char*, double LeftOut::*>, 5> reasons = {
    {{"labelled, but the person was not updated", &LeftOut::noUpdate},
     {"without a label", &LeftOut::noLabel},
     {"labels contradict each other", &LeftOut::contradiction},
     {"person not seen", &LeftOut::notSeen},
     {"estimate unknown", &LeftOut::unknownEstimate}}};

std::string secondsText(double seconds)
{
  const double tenths = static_cast<double>(static_cast<long long>(seconds * 10. + (seconds < 0. ? -0.5 : 0.5)));
  std::string text = std::to_string(tenths / 10.);
  text.erase(text.find('.') + 2);
  return text + " s";
}

std::string delayText(double delay)
{
  return (delay > 0. ? "+" : "") + secondsText(delay);
}

std::string measureText(const AgreementMeasure& measure)
{
  if (!measure.value)
    return "-";
  std::string text = session::plainNumber(*measure.value);
  if (measure.low && measure.high)
    text += " [" + session::plainNumber(*measure.low) + ", " + session::plainNumber(*measure.high) + "]";
  return text;
}

std::string nameOf(const AgreementMeasure& measure)
{
  if (measure.name == "f1")
    return "F1 " + measure.ofClass;
  return measure.name;
}

/// One of the classes that occur on either side.
bool occurs(const AgreementAtDelay& at, std::size_t index)
{
  for (std::size_t other = 0; other < at.confusion.size(); ++other)
    if (at.confusion[index][other] > 0. || at.confusion[other][index] > 0.)
      return true;
  return false;
}

/// The consecutive comparisons of the same quantity and sides.
class GroupText
{
public:
  GroupText(const std::vector<const AgreementComparison*>& group, std::size_t resamples, const Style& style)
    : _group(group), _all(*group.front()), _resamples(resamples), _style(style)
  {}

  std::string text() const
  {
    std::string text =
        _style.bold(shown(_all.quantity + ": " + _all.first + " and " + _all.second)) + "\n\n" + _measures();
    const std::string confusion = _confusion();
    if (!confusion.empty())
      text += "\n" + confusion;
    return text + "\n" + _leftOut() + _intervals();
  }

private:
  std::string _measures() const
  {
    TextTable table({{"person"}, {"measure"}, {"without delay", true}, {"delay", true}, {"with delay", true}});
    const bool onePerson = _group.size() == 2;  // all persons, and that single one
    for (std::size_t i = onePerson ? 1 : 0; i < _group.size(); ++i)
      _addRows(*_group[i], table);
    return table.text(_style);
  }

  static void _addRows(const AgreementComparison& comparison, TextTable& table)
  {
    const std::string person = comparison.person ? std::to_string(*comparison.person) : "all";
    const auto& best = comparison.best;
    table.add({person, "compared", secondsText(comparison.undelayed.compared), best ? delayText(best->delay) : "-",
               best ? secondsText(best->compared) : "-"});
    for (std::size_t i = 0; i < comparison.undelayed.measures.size(); ++i)
    {
      const AgreementMeasure& measure = comparison.undelayed.measures[i];
      const bool isThere = measure.value || (best && best->measures[i].value);
      if (isThere || measure.name != "f1")
        table.add({"", nameOf(measure), measureText(measure), "", best ? measureText(best->measures[i]) : "-"});
    }
  }

  std::string _confusion() const
  {
    const AgreementAtDelay& at = _all.undelayed;
    std::vector<TextTable::Column> columns{{_all.first + " \\ " + _all.second}};
    std::vector<std::size_t> occurring;
    for (std::size_t i = 0; i < _all.classes.size(); ++i)
      if (occurs(at, i))
      {
        occurring.push_back(i);
        columns.push_back({_all.classes[i], true});
      }
    TextTable table(columns);
    for (const std::size_t first : occurring)
    {
      TextTable::Cells cells{_all.classes[first]};
      for (const std::size_t second : occurring)
        cells.push_back(secondsText(at.confusion[first][second]));
      table.add(cells);
    }
    return occurring.empty() ? std::string() : table.text(_style);
  }

  std::string _leftOut() const
  {
    std::string list;
    for (const auto& [reason, seconds] : reasons)
      if (_all.leftOut.*seconds >= shortest)
        list += (list.empty() ? "" : "; ") + secondsText(_all.leftOut.*seconds) + " " + reason;
    return "left out: " + (list.empty() ? "nothing" : list) + "\n";
  }

  std::string _intervals() const
  {
    const AgreementAtDelay& at = _all.undelayed;
    if (at.units < 2)
      return "no intervals: there are fewer than two blocks of time\n";
    std::string of = std::to_string(at.units) + " " + _all.unit;
    if (_all.unit == "blocks")
      of += " of " + secondsText(_all.blockLength);
    return "intervals of 95 %: " + std::to_string(_resamples) + " resamples of " + of + "\n";
  }

  const std::vector<const AgreementComparison*>& _group;
  const AgreementComparison& _all;
  std::size_t _resamples;
  const Style& _style;
};

}  // namespace

std::string agreementText(const session::Agreement& agreement, const Style& style)
{
  std::string text;
  std::vector<const AgreementComparison*> group;
  const auto show = [&] {
    if (!group.empty())
      text += (text.empty() ? "" : "\n\n") + GroupText(group, agreement.resamples, style).text();
    group.clear();
  };
  for (const AgreementComparison& comparison : agreement.comparisons)
  {
    if (!comparison.person)
      show();
    group.push_back(&comparison);
  }
  show();
  return text;
}

}  // namespace KV::tools
