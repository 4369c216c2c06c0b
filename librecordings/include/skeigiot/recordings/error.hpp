#pragma once

#include <skeigiot/api.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace KV::recordings
{

/// Input that cannot be read: says where, and what was expected.
class SKEIGIOT_API Error : public std::runtime_error
{
public:
  /// Where in the input; 0 and an empty field where that says nothing.
  struct Place
  {
    std::string file;      ///< path, or the name of a stream or table; empty if the input has none
    std::size_t line = 0;  ///< physical line, from 1
    std::string field;     ///< column or member
  };

  /// A way out, for a user interface that can name its options: each input in a session of its own, or an
  /// input of the session moved in time.
  struct Remedy
  {
    std::string input;                    ///< path of the input to move; empty: only sessions of their own help
    ko::SystemClock::duration offset{0};  ///< [ns] in place of the one that it has
  };

  /// Makes an error that reads "<file>:<line>: <field>: <message>".
  Error(const Place& place, const std::string& message);

  /// Makes an error with something that would help.
  Error(const Place& place, const std::string& message, const Remedy& remedy);

  /// Returns where the input is wrong; its file, line and field are part of the message.
  const Place& place() const { return _place; }

  /// Returns what would help, which the message does not say; nothing if that is not known.
  const boost::optional<Remedy>& remedy() const { return _remedy; }

private:
  Place _place;
  boost::optional<Remedy> _remedy;
};

}  // namespace KV::recordings
