#pragma once

#include <ko/typeinterface.hpp>

#include <ostream>
#include <vector>

namespace KV::tools
{

/// Whether the members of members are listed as well, at all depths.
enum class Nested
{
  No,
  Yes
};

/// Writes each struct with a line for each member: its name and its type.
void writeTypesAsText(std::ostream& stream, const std::vector<ko::StructTypeInterface*>& structs, Nested nested);

/// Writes an array with an object for each struct: "className" and "members", each with "name", "type" and, where
/// members of members are listed, "members" of its own.
void writeTypesAsJson(std::ostream& stream, const std::vector<ko::StructTypeInterface*>& structs, Nested nested);

}  // namespace KV::tools
