#include <skeigiot/recordings/rosface.hpp>

#include "support/thrown.hpp"

#include <skeigiot/recordings/face.hpp>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <stdexcept>

namespace
{
using KV::recordings::Face;
using KV::recordings::faceOf;
using KV::recordings::RosFace;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(RosFace, MayHaveNoGaze)
{
  RosFace detected;
  detected.translation = {0., 0., 2.};
  EXPECT_TRUE(faceOf(detected).pose.position);
  EXPECT_FALSE(faceOf(detected).pose.gaze);
  detected.gazeRotation = {0., 0., 0., 1.};
  EXPECT_TRUE(faceOf(detected).pose.gaze);
}

TEST(RosFace, IsRefusedWithAPoseThatIsNone)
{
  const std::array<RosFace, 3> faces = {{{{0., 0., notANumber}, {0., 0., 0., 1.}, {}},
                                         {{0., 0., 2.}, {0., 0., 0., 0.}, {}},
                                         {{0., 0., 2.}, {0., 0., notANumber, 1.}, {}}}};
  for (const RosFace& face : faces)
    EXPECT_EQ("The pose of the face has a number that is not finite, or its rotation is 0.",
              support::textThrownBy<std::invalid_argument>([&face] { faceOf(face); }));
}

TEST(RosFace, IsRefusedWithAGazeThatIsNone)
{
  for (const std::array<double, 4>& rotation : {std::array<double, 4>{}, {0., notANumber, 0., 1.}})
    EXPECT_EQ("The rotation of the gaze has a number that is not finite, or is 0.",
              support::textThrownBy<std::invalid_argument>([&rotation] {
                faceOf({{0., 0., 2.}, {0., 0., 0., 1.}, rotation});
              }));
}

}  // namespace
