#include "report/base64.hpp"

#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>

namespace KV::session
{

std::string base64(std::string_view bytes)
{
  using SixBits = boost::archive::iterators::transform_width<const char*, 6, 8>;
  using Characters = boost::archive::iterators::base64_from_binary<SixBits>;

  // The iterators read on to a multiple of three bytes: so the rest is encoded from a padded copy.
  const std::size_t whole = bytes.size() / 3 * 3;
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  text.append(Characters(bytes.data()), Characters(bytes.data() + whole));
  if (whole == bytes.size())
    return text;
  std::string rest(bytes.substr(whole));
  const std::size_t missing = 3 - rest.size();
  rest.append(missing, '\0');
  text.append(Characters(rest.data()), Characters(rest.data() + rest.size()));
  text.replace(text.size() - missing, missing, missing, '=');
  return text;
}

}  // namespace KV::session
