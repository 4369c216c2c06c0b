#include "staticinitialisation.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/personstate.hpp>

#include <gtest/gtest.h>

#include <string>

/// \file
/// The same tests for each order in which a program and the library can be initialised. The build defines which order
/// it is (LIBRARY_COMES_FIRST), and the name of its tests (STATIC_INITIALISATION_SUITE).

namespace
{

using ko::human::AttentionState;

TEST(STATIC_INITIALISATION_SUITE, RunsInTheOrderThatThisProgramIsAbout)
{
  EXPECT_EQ(LIBRARY_COMES_FIRST, foundAtStaticInitialisation().libraryCameFirst);
}

TEST(STATIC_INITIALISATION_SUITE, FindsTheCategoriesThatAreThereLater)
{
  EXPECT_EQ("kvmood.emotionalstate", *foundAtStaticInitialisation().stateCategory);
  EXPECT_EQ(&ko::log::addCategory("kvmood.emotionalstate").name(), foundAtStaticInitialisation().stateCategory);
  EXPECT_EQ("test.staticinitialisation", *foundAtStaticInitialisation().ownCategory);
  EXPECT_EQ(&ko::log::addCategory("test.staticinitialisation").name(), foundAtStaticInitialisation().ownCategory);
}

TEST(STATIC_INITIALISATION_SUITE, FindsTheBoundariesAtTheirDefaults)
{
  EXPECT_EQ(0.4f, foundAtStaticInitialisation().confidenceBoundary);
}

TEST(STATIC_INITIALISATION_SUITE, GetsAWarningForABoundaryOutsideItsInterval)
{
  ASSERT_EQ(1u, foundAtStaticInitialisation().warnings.size());
  const ko::log::Record& warning = foundAtStaticInitialisation().warnings.front();
  EXPECT_EQ(ko::log::Level::Warning, warning.level);
  EXPECT_EQ("kvmood.emotionalstate", warning.category);
  EXPECT_EQ("setBinaryBoundaryConfidence failed: 2.000000 is not between 0.0 and 1.0.", warning.message);
  EXPECT_EQ(0.4f, foundAtStaticInitialisation().confidenceBoundaryAfterRejection);
}

TEST(STATIC_INITIALISATION_SUITE, SetsBoundariesThatStay)
{
  EXPECT_EQ(negativeBoundarySet, KV::PersonState::getBinaryBoundaryNegative());
  EXPECT_EQ(excitementBoundarySet, KV::AmbianceState::getBinaryBoundaryExcited());
}

TEST(STATIC_INITIALISATION_SUITE, FindsTheNamesOfTheZones)
{
  EXPECT_EQ(9u, foundAtStaticInitialisation().zones.size());
  EXPECT_EQ("LookingAtRobot", foundAtStaticInitialisation().zones.at(AttentionState::LookingAtRobot));
  EXPECT_EQ("LookingDownRight", foundAtStaticInitialisation().zones.at(AttentionState::LookingDownRight));
  EXPECT_EQ(KV::attentionZonesStringMapping, foundAtStaticInitialisation().zones);
}

TEST(STATIC_INITIALISATION_SUITE, EstimatesAsLater)
{
  EXPECT_GT(foundAtStaticInitialisation().valenceOfASmile, 0.f);
  EXPECT_EQ(valenceOfASmilingPerson(), foundAtStaticInitialisation().valenceOfASmile);
}

}  // namespace
