#include <skeigiot/session/agreementoptions.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

namespace
{
using namespace KV::session;

std::string refusalOf(const std::function<void()>& call)
{
  try
  {
    call();
    return "no refusal";
  }
  catch (const std::invalid_argument& error)
  {
    return error.what();
  }
}

std::string stateName(const LabelMapping& mapping, const std::string& label)
{
  const auto state = mapping.stateOf(label);
  return state ? labelQuantities().at(state->quantity).classes.at(state->state) : "none";
}

TEST(LabelMapping, KnowsTheNamesOfStates)
{
  const LabelMapping mapping;
  EXPECT_EQ("positive", stateName(mapping, "Positive"));
  EXPECT_EQ("not-engaged", stateName(mapping, "not-engaged"));
  EXPECT_EQ("LookingAtRobot", stateName(mapping, "lookingatrobot"));
  EXPECT_EQ("none", stateName(mapping, "smiling"));
}

TEST(LabelMapping, MapsLabelsInAnyCase)
{
  LabelMapping mapping;
  mapping.add("Smiling=positive");
  mapping.add("a=b=negative");
  mapping.add("neutral=engaged");
  EXPECT_EQ("positive", stateName(mapping, "smiling"));
  EXPECT_EQ("negative", stateName(mapping, "A=B"));
  EXPECT_EQ("engaged", stateName(mapping, "neutral"));
}

TEST(LabelMapping, RefusesWhatItDoesNotKnow)
{
  LabelMapping mapping;
  EXPECT_EQ("expected LABEL=STATE, found 'smiling'", refusalOf([&] { mapping.add("smiling"); }));
  EXPECT_EQ("expected LABEL=STATE, found '=positive'", refusalOf([&] { mapping.add("=positive"); }));
  EXPECT_EQ(0U,
            refusalOf([&] { mapping.add("a=happy"); }).find("expected a state, one of negative, neutral, positive, "));
  mapping.add("a=positive");
  EXPECT_EQ("the label 'A' is mapped twice", refusalOf([&] { mapping.add("A=neutral"); }));
}

TEST(LabelMapping, TakesOneStateOfEachQuantityForTimeWithoutLabel)
{
  LabelMapping mapping;
  EXPECT_FALSE(mapping.unlabelled(0));
  mapping.setUnlabelled("neutral");
  mapping.setUnlabelled("not-engaged");
  EXPECT_EQ(1U, mapping.unlabelled(0).value());
  EXPECT_EQ(0U, mapping.unlabelled(1).value());
  EXPECT_EQ("time without a label has two states of pleasure", refusalOf([&] { mapping.setUnlabelled("positive"); }));
}

TEST(LabelPersons, AreReadFromNameAndNumber)
{
  std::map<std::string, std::int32_t> persons;
  parseLabelPerson("Anna=3", persons);
  parseLabelPerson("a=b=4", persons);
  parseLabelPerson("7", persons);
  EXPECT_EQ((std::map<std::string, std::int32_t>{{"Anna", 3}, {"a=b", 4}, {"", 7}}), persons);
  EXPECT_EQ("expected NAME=NUMBER or NUMBER, found 'Anna'", refusalOf([&] { parseLabelPerson("Anna", persons); }));
  EXPECT_EQ("the person 'Anna' has two numbers", refusalOf([&] { parseLabelPerson("Anna=4", persons); }));
}

TEST(LabelScales, AreReadFromTwoEnds)
{
  EXPECT_EQ(std::make_pair(-1., 1.5), parseLabelScale("-1..1.5"));
  EXPECT_EQ(std::make_pair(9., 1.), parseLabelScale("9..1"));
  for (const char* text : {"1", "1..", "..1", "1..1", "a..b", "1..inf"})
    EXPECT_EQ("expected FROM..TO, two numbers that differ, found '" + std::string(text) + "'",
              refusalOf([&] { parseLabelScale(text); }));
}

}  // namespace
