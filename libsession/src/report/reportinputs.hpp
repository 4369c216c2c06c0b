#pragma once

#include <skeigiot/personobservation.hpp>

#include <array>
#include <cstddef>
#include <functional>

namespace KV::session
{

/// One number of an observation, as a report shows it.
struct ReportInput
{
  const char* name;
  std::function<float(const KV::PersonObservation&)> of;  ///< NaN if it was not observed
  bool isEvent;                                           ///< a rare event, of which each one matters
};

constexpr std::size_t reportInputCount = 20;
using ReportInputs = std::array<ReportInput, reportInputCount>;
using ReportInputValues = std::array<float, reportInputCount>;

/// Returns all of them, in their fixed order.
const ReportInputs& reportInputs();

/// Returns the values of an observation, in that order.
ReportInputValues reportInputsOf(const KV::PersonObservation& observation);

}  // namespace KV::session
