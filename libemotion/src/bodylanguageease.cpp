#include <skeigiot/bodylanguageease.hpp>

#include <ko/log.hpp>

#include <iomanip>
#include <ostream>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.bodylanguageease");

const char* feelingOf(float level)
{
  if (level < -0.5f)
    return "akwards";
  if (level < -0.25f)
    return "uncomfortable";
  if (level < 0.25f)
    return "almost comfortable";
  return "comfortable";
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const BodyLanguageEase& ease)
{
  stream << "Body language ease " << std::fixed << std::setprecision(1) << std::setw(3) << ease.level * 100.f;
  return stream << "% with confidence of " << ease.confidence << " (feeling " << feelingOf(ease.level) << ").";
}

}  // namespace KV
