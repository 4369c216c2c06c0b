#pragma once

#include "agreement/confusiontable.hpp"
#include "agreement/course.hpp"

#include <skeigiot/session/agreementmeasure.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Measures of classes: from a confusion table.
class ClassMeasures
{
public:
  using Unit = ConfusionTable;

  explicit ClassMeasures(std::vector<std::string> classes) : _classes(std::move(classes)) {}

  Unit nothing() const { return Unit(_classes.size()); }
  const std::vector<std::string>& classes() const { return _classes; }

  /// `what` is the class of the second side.
  static void add(Unit& unit, double from, double to, const CoursePiece& first, const CoursePiece* /*second*/, int what,
                  double /*delay*/)
  {
    unit.add(static_cast<std::size_t>(first.what), static_cast<std::size_t>(what), to - from);
  }

  static boost::optional<double> criterion(const Unit& unit) { return unit.kappa(); }
  std::vector<AgreementMeasure> measures(const Unit& unit) const;
  std::vector<std::vector<double>> confusion(const Unit& unit) const;

private:
  std::vector<std::string> _classes;
};

}  // namespace KV::session
