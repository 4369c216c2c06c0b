#include "report/reportpage.hpp"

#include <stdexcept>

namespace KV::session
{

void writeReport(std::ostream& stream, std::string_view page, const std::string& data)
{
  constexpr std::string_view place = "/*data*/";
  const std::size_t position = page.find(place);
  if (position == std::string_view::npos)
    throw std::logic_error("the template of the report has no place for data");
  stream << page.substr(0, position) << data << page.substr(position + place.size());
}

}  // namespace KV::session
