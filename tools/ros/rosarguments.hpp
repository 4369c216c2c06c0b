#pragma once

#include "ros/rosnames.hpp"
#include "ros/rosparameters.hpp"

// CLI11 expects all of its headers, included in order.
#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Parameters and names, as users of ROS give them.
struct RosArguments
{
  std::vector<std::string> parameterFiles;
  std::vector<RosParameter> parameters;  ///< of the command line
  RosNames names;
};

/// Adds the options for parameters and names. The arguments must outlive the command.
void addRosArguments(CLI::App& command, RosArguments& arguments);

/// Sets those options of the command that the command line does not have: first as the files of parameters say, then as
/// the parameters of the command line say. The option "--look-at" is the parameter "look_at", "--boundary-positive" is
/// "boundary.positive".
///
/// \throws std::invalid_argument for a file that cannot be used, and for a parameter that is not there or has a wrong
///   value; the text names the file, the line and the parameter.
void applyRosParameters(CLI::App& command, const RosArguments& arguments);

}  // namespace KV::tools
