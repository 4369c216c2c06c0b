#pragma once

#include <ko/human/attentionstate.hpp>

#include <string>

namespace KV::tools
{

/// Returns the direction of a person's look, in the page's words: "at the robot", "down right", "no zone" for Unknown.
///
/// Left and right are the person's own.
std::string zoneWords(ko::human::AttentionState zone);

}  // namespace KV::tools
