#include <ko/proxy.hpp>

#include <gtest/gtest.h>

namespace
{

using ko::proxy::Family;

// One test, since an included family stays for the life of the process.
TEST(Proxies, AreKnownInTheOrderOfTheirInclusionAndOnceEach)
{
  EXPECT_TRUE(ko::proxy::included().empty());

  ko::proxy::include(Family::EmotionService);
  ko::proxy::include(Family::FrameTypes);
  ko::proxy::include(Family::EmotionService);

  EXPECT_EQ((std::vector<Family>{Family::EmotionService, Family::FrameTypes}), ko::proxy::included());
}

}  // namespace
