#include "tunable.hpp"

#include <ko/log.hpp>

#include <string>

namespace KV
{

void setTunable(Tunable& tunable, float value, const TunableInterval& interval, const WarningSource& source)
{
  if (interval.lower < value && value < interval.upper)
  {
    tunable = value;
    return;
  }
  const std::string message =
      std::string(source.function) + " failed: " + std::to_string(value) + " is not between " + interval.words + ".";
  ko::log::log(ko::log::Level::Warning, source.category, message, source.file, source.function, source.line);
}

}  // namespace KV
