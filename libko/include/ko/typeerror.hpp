#pragma once

#include <ko/api.hpp>

#include <stdexcept>
#include <string>

namespace ko
{

/// Says that a value does not fit a type, and where.
class KO_API TypeError : public std::runtime_error
{
public:
  /// The text is "<path>: <message>", or the message alone if the path is empty.
  TypeError(const std::string& path, const std::string& message);
  ~TypeError() override;

  /// Returns where in the value the misfit is: "personState.valence.value", "[3].yaw"; empty for the value as a whole.
  const std::string& path() const { return _path; }

private:
  std::string _path;
};

}  // namespace ko
