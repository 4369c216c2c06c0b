#include <skeigiot/facialpoints.hpp>

#include <cstddef>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace KV
{

namespace
{

/// The number of the point in each slot, in the order in which the record is laid out.
constexpr std::array<PointDescription, 12> pointOfSlot = {FacialPoint0, FacialPoint3,  FacialPoint4, FacialPoint1,
                                                          FacialPoint5, FacialPoint6,  FacialPoint2, FacialPoint7,
                                                          FacialPoint8, FacialPoint11, FacialPoint9, FacialPoint10};

/// Returns the slot of the point.
///
/// \throws std::invalid_argument for an unknown point.
std::size_t slotOf(PointDescription d)
{
  for (std::size_t slot = 0; slot < pointOfSlot.size(); ++slot)
    if (pointOfSlot[slot] == d)
      return slot;

  std::ostringstream message;
  message.imbue(std::locale::classic());
  message << "Error while getting point " << static_cast<int>(d) << ", wrong argument." << std::endl;
  throw std::invalid_argument(message.str());
}

}  // namespace

void FacialPoints::setFacialPoint(PointDescription d, Point point)
{
  _slots[slotOf(d)] = {point.value.first, point.value.second, point.confidence};
}

FacialPoints::Point FacialPoints::facialPoint(PointDescription d) const
{
  const Slot& slot = _slots[slotOf(d)];
  return {{slot.x, slot.y}, slot.confidence};
}

float FacialPoints::globalConfidence() const
{
  float sum = 0.f;
  for (const Slot& slot : _slots)
    sum += slot.confidence;
  return sum / 12.f;
}

}  // namespace KV
