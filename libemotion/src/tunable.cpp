#include "tunable.hpp"

#include <ko/log.hpp>

#include <locale>
#include <sstream>

namespace KV
{

void setTunable(Tunable& tunable, float value, const TunableInterval& interval, const WarningSource& source)
{
  if (interval.lower < value && value < interval.upper)
  {
    tunable = value;
    return;
  }
  std::ostringstream message;
  message.imbue(std::locale::classic());  // std::to_string writes a comma in locales whose C functions do
  message << source.function << " failed: " << std::fixed << value << " is not between " << interval.words << ".";
  ko::log::log(ko::log::Level::Warning, source.category, message.str(), source.file, source.function, source.line);
}

}  // namespace KV
