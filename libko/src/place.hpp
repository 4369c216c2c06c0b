#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ko
{

/// Where a walk through a value is: at the value as a whole, or at a member or element of the place before.
///
/// Lives on the stack of the walk; the path is written only for an error.
class Place
{
public:
  /// Makes the place of the value as a whole.
  Place() = default;

  Place member(std::string_view name) const { return {this, name, 0}; }
  Place element(std::size_t index) const { return {this, {}, index}; }

  /// Returns "personState.valence" or "[3].yaw"; empty for the value as a whole.
  std::string path() const;

private:
  Place(const Place* outer, std::string_view name, std::size_t index) : _outer(outer), _name(name), _index(index) {}

  const Place* _outer = nullptr;  // null for the value as a whole
  std::string_view _name;         // without data for an element
  std::size_t _index = 0;
};

/// Appends one step to a path; names are shortened, since they may come from the wire.
void appendMember(std::string& path, std::string_view name);
void appendElement(std::string& path, std::size_t index);

/// Returns "(yaw, pitch)", shortened if there are very many or very long names.
std::string listed(const std::vector<std::string>& names);

/// Returns the text, or its beginning and "..." if it is longer than `length`; with question marks for control
/// characters, which would end a message or lead a terminal astray.
std::string shortened(std::string_view text, std::size_t length);

}  // namespace ko
