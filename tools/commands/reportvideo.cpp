#include "commands/reportvideo.hpp"

#include <skeigiot/recordings/error.hpp>

#include <filesystem>
#include <string_view>
#include <system_error>

namespace KV::tools
{

namespace
{

/// Writes all bytes except letters, digits and some marks as "%" and two digits.
std::string escaped(const std::string& path)
{
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char character : path)
  {
    const auto byte = static_cast<unsigned char>(character);
    if (plain.find(character) != std::string_view::npos)
      text += character;
    else
      text.append({'%', digits[byte / 16], digits[byte % 16]});
  }
  return text;
}

}  // namespace

std::string addressOfVideo(const std::string& video, const std::string& page)
{
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::is_regular_file(video, error))
    throw recordings::Error({video, 0, ""}, "there is no such video file");
  const fs::path folder = page == "-" ? fs::current_path() : fs::absolute(page).parent_path();
  return escaped(fs::absolute(video).lexically_normal().lexically_relative(folder.lexically_normal()).string());
}

}  // namespace KV::tools
