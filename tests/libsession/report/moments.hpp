#pragma once

#include "report/moment.hpp"

#include <boost/chrono/duration.hpp>

#include <limits>

namespace reporttests
{

/// A moment with this valence and without any input.
inline KV::session::Moment momentAt(int milliseconds, float valence)
{
  KV::session::Moment moment;
  moment.snapshot.sinceStart = boost::chrono::milliseconds(milliseconds);
  moment.snapshot.valence.value = valence;
  moment.inputs.fill(std::numeric_limits<float>::quiet_NaN());
  return moment;
}

}  // namespace reporttests
