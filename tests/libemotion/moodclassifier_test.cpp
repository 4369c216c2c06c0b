#include "support/thrown.hpp"

#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclassifier.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <vector>

namespace
{

using KV::classification::ArgmaxClassifierType;
using KV::classification::LogregMoodScore;
using KV::classification::MoodClass;
using KV::classification::MoodClassifier;
using KV::classification::MoodClassifierType;

/// Lets the last class win, and keeps its arguments.
class LastWins final : public MoodClassifierType
{
public:
  MoodClass& classify(const MoodClassifier& classifier, std::vector<MoodClass>& classes) const override
  {
    askedBy = &classifier;
    askedFor = &classes;
    return classes.back();
  }

  mutable const MoodClassifier* askedBy = nullptr;
  mutable const std::vector<MoodClass>* askedFor = nullptr;
};

TEST(MoodClassifier, AsksItsRule)
{
  const LogregMoodScore score(0, 0.f);
  std::vector<MoodClass> classes{{"first", 1, score}, {"last", 2, score}};
  const LastWins rule;
  const MoodClassifier classifier(rule);

  const MoodClass& winner = classifier.classify(classes);

  EXPECT_EQ(&classes.back(), &winner);
  EXPECT_EQ(&classifier, rule.askedBy);
  EXPECT_EQ(&classes, rule.askedFor);
}

TEST(MoodClassifier, LetsTheErrorOfItsRuleThrough)
{
  const LogregMoodScore score(0, 0.f);
  std::vector<MoodClass> classes{{"first", 1, score}, {"last", 2, score}};
  const ArgmaxClassifierType rule(0.f);
  const MoodClassifier classifier(rule);

  EXPECT_EQ("unknown state: no clear winner found",
            support::textThrownBy<std::runtime_error>([&] { classifier.classify(classes); }));
}

TEST(MoodClassifier, MayBeDestroyedThroughABase)
{
  EXPECT_TRUE(std::has_virtual_destructor_v<MoodClassifier>);
}

TEST(MoodClassifier, FindsTheMoodOfASmilingFace)
{
  const LogregMoodScore positive(LogregMoodScore::COEFFICIENT_POS());
  const LogregMoodScore neutral(LogregMoodScore::COEFFICIENT_NEU());
  const LogregMoodScore negative(LogregMoodScore::COEFFICIENT_NEG());
  std::vector<MoodClass> classes{{"positive", 1, positive}, {"neutral", 0, neutral}, {"negative", -1, negative}};
  for (MoodClass& moodClass : classes)
    moodClass.calculateScore({0.9f, 0.f, 0.9f, 0.f, 0.f});
  const ArgmaxClassifierType rule(0.f);

  EXPECT_EQ("positive", MoodClassifier(rule).classify(classes).name);
}

}  // namespace
