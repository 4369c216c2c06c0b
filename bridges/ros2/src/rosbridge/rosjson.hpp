#pragma once

#include "cdrmessages.hpp"

#include <skeigiot/ros2/messages.hpp>

#include <nlohmann/json_fwd.hpp>

#include <stdexcept>
#include <string>

namespace KV::ros2
{

/// A message in JSON does not have the members of its type; the text names the member.
class RosJsonError : public std::runtime_error
{
public:
  using std::runtime_error::runtime_error;
};

/// Returns a message in CDR, as a node sends it, from its JSON of rosbridge. So one decoder serves bags, DDS and
/// rosbridge.
///
/// Members are found by their names. Others than those of the type are left out. A number that is null is not a number:
/// JSON cannot write NaN and infinity. Of a type that changed, the members of any version are enough.
///
/// \throws RosJsonError for a missing member, a wrong type, an integer that is out of its range, an array of another
///   length, and a type that is not known.
CdrBytes cdrOfJson(const nlohmann::json& message, const std::string& type);

// Each returns a message as rosbridge takes it.

nlohmann::json jsonOf(const EngagementMessage& message);
nlohmann::json jsonOf(const ExpressionMessage& message);
nlohmann::json jsonOf(const GazeMessage& message);
nlohmann::json jsonOf(const DiagnosticMessage& message);
nlohmann::json jsonOf(const TextMessage& message);

}  // namespace KV::ros2
