#pragma once

#include <skeigiot/api.hpp>

#include <boost/optional/optional.hpp>

#include <string>

namespace KV::session
{

/// A measure of agreement, with its interval.
struct SKEIGIOT_API AgreementMeasure
{
  std::string name;               ///< "kappa", "accuracy" or "f1" of classes; "ccc", "pearson" or "rmse" of tracks
  std::string ofClass;            ///< of "f1": the class; empty otherwise
  boost::optional<double> value;  ///< nothing where it is not defined, as kappa if both sides know one class only
  boost::optional<double> low;    ///< lower end of the interval of 95 %; nothing with fewer than two units
  boost::optional<double> high;   ///< upper end
};

}  // namespace KV::session
