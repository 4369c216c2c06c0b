#pragma once

#include "agreement/bootstrap.hpp"
#include "agreement/side.hpp"

#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/session/agreementcomparison.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <boost/optional/optional.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Compares two sides: all persons together, then each.
template <typename Measures>
class SideComparison
{
public:
  SideComparison(Measures measures, std::string quantity, const Side& first, const Side& second,
                 const AgreementOptions& options)
    : _measures(std::move(measures)), _quantity(std::move(quantity)), _first(first), _second(second), _options(options)
  {}

  std::vector<AgreementComparison> run() const
  {
    std::vector<std::int32_t> persons;
    for (const auto& [person, course] : _second.courses)
      if (_first.courses.count(person) > 0)
        persons.push_back(person);
    std::vector<AgreementComparison> comparisons;
    if (persons.empty())
      return comparisons;
    comparisons.push_back(_compare(persons));
    for (const std::int32_t person : persons)
    {
      comparisons.push_back(_compare({person}));
      comparisons.back().person = person;
    }
    return comparisons;
  }

private:
  using Unit = typename Measures::Unit;
  using Units = std::vector<Unit>;

  static constexpr double rounding = 1e-6;  // [s]; a shorter time is a rounding error of sums of times

  AgreementComparison _compare(const std::vector<std::int32_t>& persons) const
  {
    AgreementComparison comparison;
    comparison.quantity = _quantity;
    comparison.first = _first.name;
    comparison.second = _second.name;
    comparison.classes = _measures.classes();
    comparison.unit = _drawsPersons(persons) ? "persons" : "blocks";
    comparison.blockLength = _options.blockLength;
    for (const std::int32_t person : persons)
      _countLeftOut(person, comparison.leftOut);
    comparison.undelayed = _at(persons, 0.);
    const boost::optional<double> delay = _bestDelay(persons);
    if (delay)
      comparison.best = *delay == 0. ? comparison.undelayed : _at(persons, *delay);
    return comparison;
  }

  bool _drawsPersons(const std::vector<std::int32_t>& persons) const
  {
    return persons.size() >= _options.fewestPersons;
  }

  /// Calls `use(from, to, first, second, what)` for all time in which both sides have a value.
  template <typename Use>
  void _forEachCompared(std::int32_t person, double delay, Use use) const
  {
    sweep(_first.courses.at(person), _second.courses.at(person), delay,
          [&](double from, double to, const CoursePiece& first, const CoursePiece* second) {
            const int what = second == nullptr ? _second.between : second->what;
            if (first.what >= 0 && what >= 0)
              use(from, to, first, second, what);
          });
  }

  Unit _whole(const std::vector<std::int32_t>& persons, double delay) const
  {
    Unit whole = _measures.nothing();
    for (const std::int32_t person : persons)
      _forEachCompared(person, delay,
                       [&](double from, double to, const CoursePiece& first, const CoursePiece* second, int what) {
                         _measures.add(whole, from, to, first, second, what, delay);
                       });
    return whole;
  }

  /// Returns the units to draw from: persons, or blocks of time of each person. Units that are empty up to rounding are
  /// left out: a resample of them alone would compare no time.
  Units _units(const std::vector<std::int32_t>& persons, double delay) const
  {
    Units units;
    for (const std::int32_t person : persons)
    {
      std::map<std::int64_t, Unit> blocks;
      _forEachCompared(
          person, delay, [&](double from, double to, const CoursePiece& first, const CoursePiece* second, int what) {
            const auto number =
                static_cast<std::int64_t>(_drawsPersons(persons) ? 0. : std::floor(from / _options.blockLength));
            Unit& block = blocks.emplace(number, _measures.nothing()).first->second;
            _measures.add(block, from, to, first, second, what, delay);
          });
      for (auto& [number, block] : blocks)
        if (block.total() > rounding)
          units.push_back(std::move(block));
    }
    return units;
  }

  /// The delay nearest to 0 of the best ones; nothing if the criterion is undefined at all delays.
  boost::optional<double> _bestDelay(const std::vector<std::int32_t>& persons) const
  {
    constexpr double better = 1e-9;  // more than the rounding error of the sums
    boost::optional<double> best;
    double greatest = 0.;
    const auto steps = static_cast<int>(std::floor(_options.maximalDelay / _options.delayStep + 1e-9));
    for (int step = 0; step <= steps; ++step)
      for (const int sign : {1, -1})
      {
        recordings::InterruptionCheck::ask();
        const double delay = sign * step * _options.delayStep;
        if (step == 0 && sign < 0)
          continue;
        const boost::optional<double> found = Measures::criterion(_whole(persons, delay));
        if (found && (!best || *found > greatest + better))
        {
          best = delay;
          greatest = *found;
        }
      }
    return best;
  }

  AgreementAtDelay _at(const std::vector<std::int32_t>& persons, double delay) const
  {
    const Unit whole = _whole(persons, delay);
    AgreementAtDelay at;
    at.delay = delay;
    at.compared = whole.total();
    at.measures = _measures.measures(whole);
    at.confusion = _measures.confusion(whole);
    const Units units = _units(persons, delay);
    at.units = units.size();
    if (units.size() >= 2)
      _addIntervals(units, at.measures);
    return at;
  }

  void _addIntervals(const Units& units, std::vector<AgreementMeasure>& measures) const
  {
    std::vector<std::vector<double>> drawn(measures.size());
    Bootstrap(_options.seed, _options.resamples).resample(units, _measures.nothing(), [&](const Unit& sum) {
      const std::vector<AgreementMeasure> found = _measures.measures(sum);
      for (std::size_t i = 0; i < found.size(); ++i)
        if (found[i].value)
          drawn[i].push_back(*found[i].value);
    });
    for (std::size_t i = 0; i < measures.size(); ++i)
    {
      const auto interval = measures[i].value ? Bootstrap::interval(std::move(drawn[i])) : boost::none;
      if (!interval)
        continue;
      measures[i].low = interval->first;
      measures[i].high = interval->second;
    }
  }

  void _countLeftOut(std::int32_t person, AgreementComparison::LeftOut& leftOut) const
  {
    double labelled = 0.;
    for (const CoursePiece& piece : _second.courses.at(person))
      labelled += piece.to - piece.from;
    sweep(_first.courses.at(person), _second.courses.at(person), 0.,
          [&](double from, double to, const CoursePiece& first, const CoursePiece* second) {
            labelled -= second == nullptr ? 0. : to - from;
            const int what = second == nullptr ? _second.between : second->what;
            const auto says = [&](int silence) { return first.what == silence || what == silence; };
            if (says(NoLabel))
              leftOut.noLabel += to - from;
            else if (says(Contradiction))
              leftOut.contradiction += to - from;
            else if (says(NotSeen))
              leftOut.notSeen += to - from;
            else if (says(UnknownEstimate))
              leftOut.unknownEstimate += to - from;
          });
    leftOut.noUpdate += labelled > rounding ? labelled : 0.;
  }

  Measures _measures;
  std::string _quantity;
  const Side& _first;
  const Side& _second;
  const AgreementOptions& _options;
};

}  // namespace KV::session
