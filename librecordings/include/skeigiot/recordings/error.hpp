#pragma once

#include <skeigiot/api.hpp>

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
    std::string file;
    std::size_t line = 0;  ///< physical line, from 1
    std::string field;     ///< column or member
  };

  /// Makes an error that reads "<file>:<line>: <field>: <message>".
  Error(const Place& place, const std::string& message);

  const Place& place() const { return _place; }

private:
  Place _place;
};

}  // namespace KV::recordings
