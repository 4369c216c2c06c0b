#include <skeigiot/recordings/error.hpp>

namespace KV::recordings
{
namespace
{
std::string composed(const Error::Place& place, const std::string& message)
{
  std::string text = place.file;
  if (place.line > 0)
    text += ":" + std::to_string(place.line);
  if (!text.empty())
    text += ": ";
  if (!place.field.empty())
    text += place.field + ": ";
  return text + message;
}

}  // namespace

Error::Error(const Place& place, const std::string& message)
  : std::runtime_error(composed(place, message)), _place(place)
{}

Error::Error(const Place& place, const std::string& message, const Remedy& remedy)
  : std::runtime_error(composed(place, message)), _place(place), _remedy(remedy)
{}

}  // namespace KV::recordings
