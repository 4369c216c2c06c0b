#include "terminal/personheading.hpp"

#include "terminal/shown.hpp"

#include <skeigiot/session/names.hpp>

namespace KV::tools
{

std::string personHeading(std::int32_t person, const std::string& name)
{
  return name.empty() ? "Person " + std::to_string(person) : shown(session::personText(person, name));
}

}  // namespace KV::tools
