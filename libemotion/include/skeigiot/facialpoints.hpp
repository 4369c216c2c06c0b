#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <array>
#include <utility>

namespace KV
{

/// The twelve facial points by number: what each one means belongs to the face analyser.
enum PointDescription : int
{
  FacialPoint0 = 0,  ///< point 0
  FacialPoint1,      ///< point 1
  FacialPoint2,      ///< point 2
  FacialPoint3,      ///< point 3
  FacialPoint4,      ///< point 4
  FacialPoint5,      ///< point 5
  FacialPoint6,      ///< point 6
  FacialPoint7,      ///< point 7
  FacialPoint8,      ///< point 8
  FacialPoint9,      ///< point 9
  FacialPoint10,     ///< point 10
  FacialPoint11      ///< point 11
};

/// Twelve landmarks of one face: position in the image (x then y, [px]) with a confidence each.
class SKEIGIOT_API FacialPoints
{
public:
  /// Position in the image, x then y [px], with the confidence in it.
  using Point = ValueConfidence<std::pair<float, float>>;

  /// Makes all points (0, 0) with confidence 0.
  FacialPoints() = default;

  /// Stores `point` as it is given.
  ///
  /// \throws std::invalid_argument "Error while getting point <d>, wrong argument.\n" if `d` is not 0 to 11; nothing is
  ///   stored then. Deliberate: the setter uses the getter's wording.
  void setFacialPoint(PointDescription d, Point point);

  /// Returns a copy of the point.
  ///
  /// \throws std::invalid_argument "Error while getting point <d>, wrong argument.\n" if `d` is not 0 to 11.
  Point facialPoint(PointDescription d) const;

  /// Returns the mean of the twelve confidences; a point that was never set counts as 0.
  float globalConfidence() const;

private:
  struct Slot  // a Point that can be copied as memory is, which moving a memory's records is for the most part
  {
    float x;
    float y;
    float confidence;
  };

  std::array<Slot, 12> _slots{};  // in the order of layout, which is not the order of the numbers
};

}  // namespace KV
