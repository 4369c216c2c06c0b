#pragma once

#include "valueview.hpp"

#include <ko/value.hpp>

namespace ko
{

/// Where a conversion differs from the rules at ko::Value.
struct ConversionRules
{
  /// Take "NaN", "Infinity" and "-Infinity" for numbers where a floating-point type is expected.
  bool nonFiniteAsText = false;
  /// Build values anew, member by member, even where the types are equal, instead of copying them.
  bool rebuildSameType = false;
};

/// Returns the object as a value of another type.
///
/// \throws TypeError with the path of the first member that does not fit.
Value converted(const ValueView& source, TypeInterface* type, const ConversionRules& rules);

}  // namespace ko
