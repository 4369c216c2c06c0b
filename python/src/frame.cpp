#include "frame.hpp"

#include "longframe.hpp"
#include "wideframe.hpp"

#include <algorithm>

namespace binding
{

std::unique_ptr<KV::recordings::TidyTable> tableOf(const Frame& frame)
{
  const auto isReading = [](const FrameColumn& column) {
    return column.name == nameOf(KV::recordings::TidyColumn::Reading);
  };
  if (std::any_of(frame.columns.begin(), frame.columns.end(), isReading))
    return std::make_unique<LongFrame>(frame);
  return std::make_unique<WideFrame>(frame);
}

}  // namespace binding
