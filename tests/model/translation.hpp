#pragma once

#include "model/model.hpp"

#include <skeigiot/personobservation.hpp>

#include <ko/systemclock.hpp>

namespace model
{

ko::SystemClock::time_point toTimePoint(Nanoseconds time);
Nanoseconds toNanoseconds(ko::SystemClock::time_point time);

/// The same observation in the types of the library.
KV::PersonObservation toLibrary(const Observation& observation);

}  // namespace model
