#include <skeigiot/recordings/rosreadings.hpp>

#include <skeigiot/recordings/rosface.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
using KV::recordings::FaceAdapter;
using KV::recordings::RosActionUnits;

// Of the tables 6 and 12 are known, which is enough for joy; the others are unknown. The rest of 12 is subtracted.
TEST(RosReadings, TakeTheMeanConfidenceOfTheActionUnitsThatAreKnown)
{
  RosActionUnits units;
  units.intensity[6] = 2.5f;
  units.confidence[6] = 0.5f;
  units.intensity[12] = 5.f;
  units.confidence[12] = 1.f;
  units.intensity[43] = 5.f;  // in no table
  units.confidence[43] = 0.1f;
  const auto readings = readingsOf(units, FaceAdapter());
  EXPECT_FLOAT_EQ(0.8f, readings.smile.value().value);
  EXPECT_FLOAT_EQ(0.75f, readings.smile.value().confidence);
  EXPECT_FLOAT_EQ(0.8f, readings.expressions.value().joy.value);
  EXPECT_FLOAT_EQ(0.f, readings.expressions.value().sorrow.confidence);
}

TEST(RosReadings, IgnoreActionUnitsWithoutConfidence)
{
  RosActionUnits units;
  units.intensity.fill(3.f);
  EXPECT_TRUE(readingsOf(units, FaceAdapter()).empty());
}

TEST(RosReadings, RefuseAPoseWithoutARotation)
{
  KV::recordings::RosFace detected;
  detected.rotation = {0., 0., 0., 0.};
  EXPECT_THROW(static_cast<void>(faceOf(detected)), std::invalid_argument);
  detected.rotation = {0., 0., 0., 1.};
  detected.gazeRotation = {{0., 0., 0., 0.}};
  EXPECT_THROW(static_cast<void>(faceOf(detected)), std::invalid_argument);
}

}  // namespace
