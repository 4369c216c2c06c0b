#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionplan.hpp>

#include <map>
#include <stdexcept>
#include <string>

namespace KV::session
{

/// Why an output is refused.
enum class OutputFault
{
  IsInput,     ///< the file is an input
  NamedTwice,  ///< another output goes to the same file
  NotOurs      ///< the file exists, and does not look like an output of this library
};

/// An output that would destroy something. The message does not say how a user interface asks to replace a file.
class SKEIGIOT_API OutputRefused : public std::invalid_argument
{
public:
  /// Makes an error with this message.
  OutputRefused(OutputFault fault, const std::string& message) : std::invalid_argument(message), _fault(fault) {}

  /// Returns what is wrong, for a user interface that adds what helps.
  OutputFault fault() const { return _fault; }

private:
  OutputFault _fault;
};

/// Refuses outputs that would destroy something: an input, another output, or a file of somebody else.
///
/// Files are compared by device and inode, so that neither another spelling nor a link hides which file it is. Make
/// one object for all outputs that are written together. It opens nothing for writing.
class SKEIGIOT_API OutputCheck
{
public:
  /// With `force`, any existing file may be replaced, but no input.
  explicit OutputCheck(bool force = false);

  /// Notes that the file is an input, "-" for standard input; of a folder, each file that is directly in it. A missing
  /// file is ignored.
  void protect(const std::string& input);

  /// Notes all inputs of the session.
  void protect(const SessionInputs& session);

  /// Takes a file to be written, "-" for standard output, and returns its path behind all links.
  ///
  /// An existing file is refused unless it looks like an output of this library: CSV or JSON Lines with our fields
  /// only, an HTML page of ours, or an empty file. A recording in the own format may be the only copy of it, so that it
  /// does not count as such.
  ///
  /// \throws OutputRefused if the file must not be written.
  std::string admit(const std::string& target);

private:
  bool _force;
  std::map<std::string, std::string> _inputs;   // names by which file it is
  std::map<std::string, std::string> _outputs;  // the same
};

}  // namespace KV::session
