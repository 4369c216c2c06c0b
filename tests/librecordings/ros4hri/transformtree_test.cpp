#include "ros4hri/transformtree.hpp"

#include <gmock/gmock.h>

#include <cmath>

namespace
{
using KV::recordings::Rotation;
using KV::recordings::Transform;
using KV::recordings::TransformTree;
using KV::recordings::Vector3;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double rounding = 1e-12;  // double precision, a few products

auto near(double x, double y, double z)
{
  return ElementsAre(DoubleNear(x, rounding), DoubleNear(y, rounding), DoubleNear(z, rounding));
}

// A quarter turn about z, which takes x to y.
Rotation quarter()
{
  return Rotation::fromQuaternion({0., 0., 1., 1.}).value();
}

TEST(Rotation, TurnsItsAxes)
{
  EXPECT_THAT(quarter().axis(0), near(0., 1., 0.));
  EXPECT_THAT(quarter().axis(1), near(-1., 0., 0.));
  EXPECT_THAT(quarter().axis(2), near(0., 0., 1.));
  EXPECT_THAT(quarter() * Vector3({1., 2., 3.}), near(-2., 1., 3.));
}

TEST(Rotation, IsUndoneByItsInverse)
{
  const Rotation rotation = Rotation::fromQuaternion({0.1, -0.2, 0.3, 0.9}).value();
  EXPECT_NEAR(0., (rotation.inverse() * rotation).angle(), 1e-7);  // the arc cosine is flat at 1
  EXPECT_THAT(rotation.inverse() * (rotation * Vector3({1., 2., 3.})), near(1., 2., 3.));
}

TEST(Rotation, AddsUp)
{
  EXPECT_THAT((quarter() * quarter()).axis(0), near(-1., 0., 0.));
  EXPECT_NEAR(std::acos(-1.), (quarter() * quarter()).angle(), 1e-7);  // as above
}

TEST(Rotation, NeedsAQuaternionWithALength)
{
  EXPECT_FALSE(Rotation::fromQuaternion({0., 0., 0., 0.}));
  EXPECT_FALSE(Rotation::fromQuaternion({0., 0., 0., std::nan("")}));
  EXPECT_FALSE(Rotation::fromQuaternion({0., INFINITY, 0., 1.}));
}

TEST(TransformTree, FindsAFrameInItsAncestors)
{
  TransformTree tree;
  tree.set("map", "base", {quarter(), {10., 0., 0.}});
  tree.set("base", "camera", {{}, {1., 0., 0.}});
  EXPECT_THAT(tree.find("base", "camera")->translation, near(1., 0., 0.));
  EXPECT_THAT(tree.find("map", "camera")->translation, near(10., 1., 0.));
  EXPECT_THAT(tree.ancestors("camera"), ElementsAre("base", "map"));
}

TEST(TransformTree, FindsAFrameInItsDescendants)
{
  TransformTree tree;
  tree.set("map", "base", {quarter(), {10., 0., 0.}});
  EXPECT_THAT(tree.find("base", "map")->translation, near(0., 10., 0.));
}

TEST(TransformTree, FindsAFrameInAnotherBranch)
{
  TransformTree tree;
  tree.set("base", "camera", {quarter(), {0., 0., 1.}});
  tree.set("base", "face", {{}, {3., 0., 1.}});
  EXPECT_THAT(tree.find("camera", "face")->translation, near(0., -3., 0.));
  EXPECT_THAT(tree.find("face", "face")->translation, near(0., 0., 0.));
}

TEST(TransformTree, KeepsTheLastReport)
{
  TransformTree tree;
  tree.set("base", "face", {{}, {1., 0., 0.}});
  tree.set("head", "face", {{}, {2., 0., 0.}});
  EXPECT_FALSE(tree.find("base", "face"));
  EXPECT_THAT(tree.find("head", "face")->translation, near(2., 0., 0.));
}

TEST(TransformTree, FindsNothingThatIsNotConnected)
{
  TransformTree tree;
  tree.set("base", "camera", {});
  EXPECT_FALSE(tree.find("camera", "face"));
  EXPECT_THAT(tree.ancestors("face"), IsEmpty());
}

TEST(TransformTree, EndsWhereFramesGoInCircles)
{
  TransformTree tree;
  tree.set("a", "b", {});
  tree.set("b", "a", {});
  tree.set("c", "c", {});
  EXPECT_TRUE(tree.find("a", "b"));
  EXPECT_FALSE(tree.find("c", "a"));
  EXPECT_FALSE(tree.find("elsewhere", "a"));
}

TEST(TransformTree, TakesNoMoreFramesThanItCanKeep)
{
  TransformTree tree;
  for (std::size_t i = 0; i < TransformTree::mostFrames; ++i)
    ASSERT_TRUE(tree.set("map", std::to_string(i), {}));
  EXPECT_FALSE(tree.set("map", "one more", {}));
  EXPECT_TRUE(tree.set("base", "0", {})) << "which is known";
}

}  // namespace
