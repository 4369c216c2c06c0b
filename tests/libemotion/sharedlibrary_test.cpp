#include "support/thrown.hpp"

#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/moodclassifier.hpp>
#include <skeigiot/shorttermmemory.hpp>

#include <ko/log.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <typeinfo>
#include <vector>

namespace
{

using KV::classification::ArgmaxClassifierType;
using KV::classification::MoodClass;
using KV::classification::MoodClassifier;
using KV::classification::MoodScore;

TEST(SharedLibrary, RegistersItsNineLogCategoriesWhenLoaded)
{
  EXPECT_THAT(ko::log::categories(),
              ::testing::ElementsAre("KVMoodRecorder", "kvmood.ambiance", "kvmood.bodylanguageease",
                                     "kvmood.bodylanguagestate", "kvmood.emotionalstate", "kvmood.person",
                                     "kvmood.personmemory", "kvmood.ramp", "kvmood.socialgraph"));
}

TEST(SharedLibrary, ThrowsErrorsThatAProgramCatches)
{
  KV::ShortTermMemory<KV::FacialPoints> memory(boost::chrono::milliseconds(1));

  EXPECT_EQ("The ShortTermMemory is empty.", support::textThrownBy<std::range_error>([&] { memory.youngest(); }));
}

/// A score made outside the library.
class CountingScore final : public MoodScore
{
public:
  float calculateScore(const MoodClass&, const std::vector<float>& features) const override
  {
    return static_cast<float>(features.size());
  }
};

TEST(SharedLibrary, TakesAScoreMadeOutside)
{
  const CountingScore score;
  std::vector<MoodClass> classes{{"few", 1, score}, {"many", 2, score}};
  classes[0].calculateScore({1.f});
  classes[1].calculateScore({1.f, 1.f, 1.f});
  const ArgmaxClassifierType rule(1.f);

  const MoodClass& winner = MoodClassifier(rule).classify(classes);

  EXPECT_EQ("many", winner.name);
  EXPECT_EQ(3.f, winner.score);
}

TEST(SharedLibrary, SharesItsTypesWithAProgram)
{
  const ArgmaxClassifierType rule(0.f);
  const KV::classification::MoodClassifierType& base = rule;

  EXPECT_NE(nullptr, dynamic_cast<const ArgmaxClassifierType*>(&base));
  EXPECT_TRUE(typeid(base) == typeid(ArgmaxClassifierType));
}

}  // namespace
