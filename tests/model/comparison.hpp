#pragma once

#include "model/model.hpp"

#include <skeigiot/person.hpp>

#include <string>

namespace model
{

/// Compares every field of the two persons' states, the records of their memories, and the answers of their queries.
///
/// Floats are compared bit for bit, so that +0 and -0 differ. Two NaN are equal with any bits: the payload and sign of
/// an operation's NaN depend on the order in which the compiler passes the operands, and nothing in the estimate reads
/// them.
///
/// \return the first difference found, "" without any: the field's name and both values, floats in hexadecimal.
std::string firstDifference(const KV::Person& library, const Person& person);

}  // namespace model
