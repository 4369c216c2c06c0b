#include <skeigiot/classification/coefficient.hpp>

#include <gtest/gtest.h>

#include <vector>

namespace
{

using KV::classification::Coefficient;

TEST(Coefficient, KeepsWeightsAndInterceptAsGiven)
{
  const Coefficient coefficient({1.f, -2.5f, 0.f}, -7.f);

  EXPECT_EQ((std::vector<float>{1.f, -2.5f, 0.f}), coefficient.weights);
  EXPECT_EQ(-7.f, coefficient.intercept);
}

TEST(Coefficient, MayHaveNoWeights)
{
  const Coefficient coefficient({}, 3.f);

  EXPECT_TRUE(coefficient.weights.empty());
  EXPECT_EQ(3.f, coefficient.intercept);
}

TEST(Coefficient, KeepsACopyOfTheWeights)
{
  std::vector<float> weights{1.f};
  const Coefficient coefficient(weights, 0.f);

  weights[0] = 2.f;

  EXPECT_EQ(1.f, coefficient.weights[0]);
}

}  // namespace
