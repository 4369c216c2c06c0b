#pragma once

#include <istream>
#include <string>
#include <vector>

namespace KV::tools
{

/// A parameter of the node, as a file or the command line gives it.
struct RosParameter
{
  std::string name;       ///< with "." between the names of its groups, such as "boundary.positive"
  std::string value;      ///< as text; the values of a list with "," between them
  std::string place;      ///< where it was given, such as "robot.yaml: line 4"
  bool isForAll = false;  ///< given for all nodes, so that it may be meant for another node
};

/// Reads a file of parameters of ROS, in YAML: the parameters below "ros__parameters" of the node, and those of all
/// nodes. Parameters of other nodes are left out.
///
/// The parameters of the node "skeigiot" are those of "skeigiot", "/skeigiot" and "/**/skeigiot"; those of all nodes
/// are below "/**" and "/*".
///
/// \throws std::invalid_argument if the file cannot be read, is longer than 1 MiB, has no parameters of the node, or
/// has
///   a name twice in a group, also of another node; the text names the file, the line and the parameter.
std::vector<RosParameter> readRosParameters(const std::string& file, const std::string& node);

/// As above, from a stream; `name` is that of the file in errors.
std::vector<RosParameter> readRosParameters(std::istream& text, const std::string& name, const std::string& node);

/// Reads "NAME:=VALUE" of the command line. The value is YAML, such as "[0, 0.2, 0]"; that of a group has several
/// parameters. Their place is "--param".
///
/// \throws std::invalid_argument for another form; the text names the parameter, but no option.
std::vector<RosParameter> parseRosParameter(const std::string& text);

}  // namespace KV::tools
