#pragma once

#include <skeigiot/recordings/inputlimits.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Numbers the persons that a file names: whole numbers stay as they are, other names are numbered in the order in
/// which they appear.
class PersonNames
{
public:
  /// No file of one session has more names.
  static constexpr std::size_t mostNames = limits::mostPersonNames;

  /// Returns the number of the person with this name.
  ///
  /// \throws BadLine at this place if there is no name, or if names and numbers are mixed: they might collide.
  /// \throws Error if there are too many names.
  std::int32_t numberOf(std::string_view name, const Error::Place& place);

  /// Returns the name of the person with this number, in UTF-8; empty if it is a number.
  std::string nameOf(std::int32_t number) const;

private:
  std::int32_t _countedNumberOf(std::string_view name, const Error::Place& place);

  std::optional<bool> _areNumbers;
  std::map<std::string, std::int32_t, std::less<>> _numbers;
  std::vector<std::string> _names;  // by number
};

}  // namespace KV::recordings
