#include <skeigiot/recordings/description.hpp>

namespace KV::recordings
{

std::string listed(const std::vector<std::string>& parts)
{
  std::string text;
  for (const std::string& part : parts)
    text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string shortNumber(float value)
{
  std::string text = std::to_string(value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.')
    text.pop_back();
  return text;
}

std::string describeMissing(const std::vector<std::pair<bool, const char*>>& parts)
{
  std::vector<std::string> missing;
  for (const auto& [isThere, name] : parts)
    if (!isThere)
      missing.emplace_back(name);
  return missing.empty() ? "nothing is missing" : "missing: " + listed(missing);
}

}  // namespace KV::recordings
