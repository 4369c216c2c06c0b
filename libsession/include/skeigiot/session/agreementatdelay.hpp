#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/agreementmeasure.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::session
{

/// How two sides agree if the second one is moved in time.
struct SKEIGIOT_API AgreementAtDelay
{
  double delay = 0.;      ///< [s] by which the second side comes later than the first; it is moved back by so much
  double compared = 0.;   ///< [s] in which both sides say something
  std::size_t units = 0;  ///< persons or blocks of time from which the intervals were drawn
  std::vector<AgreementMeasure> measures;      ///< kappa, accuracy and F1 of each class; or ccc, Pearson and rmse
  std::vector<std::vector<double>> confusion;  ///< [s] by class of the first side, then of the second; none for tracks
};

}  // namespace KV::session
