#pragma once

#include "model/model.hpp"

#include <skeigiot/person.hpp>

#include <string>

namespace model
{

/// Compares every field of the two persons' states, what their memories hold, and what can be asked of the state.
///
/// Floats are compared bit for bit, so that +0 and -0 differ. Two NaN are equal whatever their bits: which payload and
/// sign come out of an operation on NaN depends on the order in which the compiler hands over the operands, and nothing
/// in the estimate reads them.
///
/// \return the first difference found, "" if there is none: the field's name and both values, floats in hexadecimal.
std::string firstDifference(const KV::Person& library, const Person& person);

}  // namespace model
