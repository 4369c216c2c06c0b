#pragma once

#include <pugixml.hpp>

#include <new>
#include <string>

/// \file
/// pugixml reports a lack of memory by values that are easily overlooked: parts of a document would be lost.

namespace KV::recordings
{

/// Throws std::bad_alloc if the parser had too little memory; any other result is the caller's.
inline void throwIfOutOfMemory(const pugi::xml_parse_result& result)
{
  if (result.status == pugi::status_out_of_memory)
    throw std::bad_alloc();
}

/// Returns the node that was added, or throws std::bad_alloc.
inline pugi::xml_node added(const pugi::xml_node& node)
{
  if (!node)
    throw std::bad_alloc();
  return node;
}

/// Sets a value of an attribute or a text, or throws std::bad_alloc.
inline void setValue(pugi::xml_attribute attribute, const std::string& value)
{
  if (!attribute.set_value(value.c_str()))
    throw std::bad_alloc();
}
inline void setValue(pugi::xml_text text, const std::string& value)
{
  if (!text.set(value.c_str()))
    throw std::bad_alloc();
}

}  // namespace KV::recordings
