#include <skeigiot/personstate.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/session/agreement.hpp>
#include <skeigiot/session/agreementrecorder.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <boost/chrono/duration.hpp>

#include <cmath>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{
using namespace KV::session;
using KV::recordings::Labels;
using KV::recordings::LabelTrack;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr double precision = 1e-9;  // sums of times in seconds

Duration secondsOf(double seconds)
{
  return Duration(static_cast<Duration::rep>(seconds * 1e9 + 0.5));
}

/// An update with full confidence.
Snapshot update(std::int32_t person, double time, float valence, float attention = 0.f)
{
  Snapshot snapshot;
  snapshot.person = person;
  snapshot.sinceStart = secondsOf(time);
  snapshot.valence = {valence, 1.f};
  snapshot.attention = {attention, 1.f};
  snapshot.pleasure = valence < -0.2f  ? KV::PleasureNegative
                      : valence < 0.2f ? KV::PleasureNeutral
                                       : KV::PleasurePositive;
  snapshot.zone = attention >= 0.6f ? ko::human::AttentionState::LookingAtRobot : ko::human::AttentionState::LookingUp;
  return snapshot;
}

class AgreementOfLabels : public ::testing::Test
{
protected:
  void add(double from, double to, const std::string& label, const std::string& person = "",
           const std::string& coder = "anna", const std::string& tier = "")
  {
    labels.spans.push_back({from, to, label, person, coder, tier});
  }

  /// Updates at this rate, positive from `rise` on.
  void play(std::int32_t person, double to, double rise, double interval = 0.1)
  {
    for (double time = 0.; time < to - 1e-6; time += interval)
      recorder.personUpdated(update(person, time, time > rise - 1e-6 ? 0.5f : 0.f));
  }

  Agreement compare() { return recorder.compare({labels}, options); }

  std::string refusal()
  {
    try
    {
      compare();
      return "no refusal";
    }
    catch (const std::invalid_argument& error)
    {
      return error.what();
    }
  }

  static double measured(const AgreementAtDelay& at, const std::string& name, const std::string& ofClass = "")
  {
    for (const AgreementMeasure& measure : at.measures)
      if (measure.name == name && measure.ofClass == ofClass)
        return measure.value.value();
    throw std::invalid_argument("there is no " + name);
  }

  AgreementRecorder recorder;
  Labels labels;
  AgreementOptions options;
};

TEST_F(AgreementOfLabels, CountsTheTimeInWhichBothSaySomething)
{
  play(1, 10., 5.);
  add(0., 4., "neutral");
  add(4., 10., "positive");
  const Agreement agreement = compare();
  ASSERT_EQ(2U, agreement.comparisons.size());
  const AgreementComparison& all = agreement.comparisons[0];
  EXPECT_EQ("pleasure", all.quantity);
  EXPECT_EQ("estimate", all.first);
  EXPECT_EQ("anna", all.second);
  EXPECT_THAT(all.classes, ElementsAre("negative", "neutral", "positive"));
  EXPECT_NEAR(10., all.undelayed.compared, precision);
  EXPECT_NEAR(4., all.undelayed.confusion[1][1], precision);
  EXPECT_NEAR(1., all.undelayed.confusion[1][2], precision);
  EXPECT_NEAR(5., all.undelayed.confusion[2][2], precision);
  EXPECT_NEAR(0.9, measured(all.undelayed, "accuracy"), precision);
  EXPECT_NEAR((0.9 - 0.5) / 0.5, measured(all.undelayed, "kappa"), precision);
  EXPECT_NEAR(10. / 11., measured(all.undelayed, "f1", "positive"), precision);
  EXPECT_FALSE(all.person);
  EXPECT_EQ(1, agreement.comparisons[1].person.value());
}

TEST_F(AgreementOfLabels, FindsTheDelayAtWhichBothAgreeBest)
{
  play(1, 20., 5.);
  add(0., 6.2, "neutral");
  add(6.2, 20., "positive");
  const AgreementComparison all = compare().comparisons[0];
  ASSERT_TRUE(all.best);
  EXPECT_NEAR(1.2, all.best->delay, precision) << "the label comes 1.2 s after the estimate";
  EXPECT_NEAR(1., measured(*all.best, "kappa"), precision);
  EXPECT_NEAR(18.8, all.best->compared, precision);
}

TEST_F(AgreementOfLabels, FindsANegativeDelayWhereTheEstimateComesLater)
{
  play(1, 20., 5.);
  add(0., 4., "neutral");
  add(4., 20., "positive");
  EXPECT_NEAR(-1., compare().comparisons[0].best->delay, precision);
}

TEST_F(AgreementOfLabels, DoesNotDependOnTheRateOfUpdates)
{
  play(1, 20., 5., 0.1);
  play(2, 20., 5., 1. / 30.);
  for (const char* person : {"1", "2"})
  {
    add(0., 4.25, "neutral", person);
    add(4.25, 20., "positive", person);
  }
  const Agreement agreement = compare();
  EXPECT_NEAR(measured(agreement.comparisons[1].undelayed, "kappa"),
              measured(agreement.comparisons[2].undelayed, "kappa"), 1e-6);
}

TEST_F(AgreementOfLabels, HoldsAnUpdateForASecondAtMost)
{
  recorder.personUpdated(update(1, 0., 0.5f));
  recorder.personUpdated(update(1, 10., 0.f));
  recorder.personUpdated(update(1, 10.5, 0.f));
  add(0., 12., "positive");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_NEAR(2., all.undelayed.compared, precision);
  EXPECT_NEAR(10., all.leftOut.noUpdate, precision);
}

TEST_F(AgreementOfLabels, ReportsWhatWasLeftOutAndWhy)
{
  for (int i = 0; i < 100; ++i)
  {
    Snapshot snapshot = update(1, 0.1 * i, 0.5f);
    snapshot.seen = i < 60 || i >= 70;
    if (i >= 70 && i < 90)
      snapshot.pleasure = KV::PleasureUnknown;
    recorder.personUpdated(snapshot);
  }
  add(-1., 3., "positive");
  add(2., 4., "neutral");
  add(5., 9.5, "neutral");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_NEAR(1., all.leftOut.noUpdate, precision);
  EXPECT_NEAR(1.5, all.leftOut.noLabel, precision);
  EXPECT_NEAR(1., all.leftOut.contradiction, precision);
  EXPECT_NEAR(1., all.leftOut.notSeen, precision);
  EXPECT_NEAR(2., all.leftOut.unknownEstimate, precision);
  EXPECT_NEAR(4.5, all.undelayed.compared, precision);
}

TEST_F(AgreementOfLabels, TakesTimeWithoutALabelAsAState)
{
  play(1, 10., 5.);
  options.mapping.add("smiling=positive");
  options.mapping.setUnlabelled("neutral");
  add(5., 10., "smiling");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_NEAR(10., all.undelayed.compared, precision);
  EXPECT_NEAR(1., measured(all.undelayed, "kappa"), precision);
  EXPECT_NEAR(0., all.leftOut.noLabel, precision);
}

TEST_F(AgreementOfLabels, ComparesEngagementAndZones)
{
  for (int i = 0; i < 100; ++i)
    recorder.personUpdated(update(1, 0.1 * i, 0.f, i < 50 ? 0.9f : 0.1f));
  add(0., 5., "engaged");
  add(5., 10., "not-engaged");
  add(0., 5., "LookingAtRobot");
  add(5., 10., "LookingDown");
  const Agreement agreement = compare();
  ASSERT_EQ(4U, agreement.comparisons.size());
  EXPECT_EQ("engagement", agreement.comparisons[0].quantity);
  EXPECT_NEAR(1., measured(agreement.comparisons[0].undelayed, "kappa"), precision);
  EXPECT_EQ("zone", agreement.comparisons[2].quantity);
  EXPECT_NEAR(0.5, measured(agreement.comparisons[2].undelayed, "accuracy"), precision);
}

TEST_F(AgreementOfLabels, HasATableOfEachClassWithEach)
{
  for (int i = 0; i < 100; ++i)
    recorder.personUpdated(update(1, 0.1 * i, i < 30 ? -0.9f : i < 50 ? 0.f : 0.9f));
  add(0., 2., "negative");
  add(2., 4., "neutral");
  add(4., 10., "positive");
  const std::vector<std::vector<double>> table = compare().comparisons[0].undelayed.confusion;
  const std::vector<std::vector<double>> expected = {{2., 1., 0.}, {0., 1., 1.}, {0., 0., 5.}};
  ASSERT_EQ(expected.size(), table.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_THAT(table[i], ::testing::Pointwise(::testing::DoubleNear(precision), expected[i])) << i;
}

TEST_F(AgreementOfLabels, CountsTheBoundaryOfEngagementAsEngaged)
{
  const float boundary = KV::PersonState::getBinaryBoundaryLookingAtRobot();
  for (int i = 0; i < 100; ++i)
    recorder.personUpdated(update(1, 0.1 * i, 0.f, i < 50 ? boundary : std::nextafter(boundary, 0.f)));
  add(0., 5., "engaged");
  add(5., 10., "not-engaged");
  EXPECT_NEAR(1., measured(compare().comparisons[0].undelayed, "accuracy"), precision);
}

TEST_F(AgreementOfLabels, ComparesTracksAndTheirDelay)
{
  // A triangle of 8 s, as the estimate and as the coder's track on another scale, 0.5 s later.
  const auto triangle = [](double time) { return time < 4. ? 0.2 * time - 0.4 : 1.2 - 0.2 * time; };
  for (int i = 0; i < 800; ++i)
    recorder.personUpdated(update(1, 0.01 * i, static_cast<float>(triangle(0.01 * i + 0.005))));
  LabelTrack track{"value", "", "anna", "", {}};
  for (int i = 0; i <= 16; ++i)
    track.samples.push_back({0.5 * i + 0.5, 50. + 50. * triangle(0.5 * i)});
  labels.tracks.push_back(track);
  options.valueQuantity = "valence";
  options.scale = std::make_pair(0., 100.);
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_EQ("valence", all.quantity);
  EXPECT_THAT(all.classes, IsEmpty());
  ASSERT_TRUE(all.best);
  EXPECT_NEAR(0.5, all.best->delay, precision);
  EXPECT_NEAR(1., measured(*all.best, "ccc"), 1e-5) << "single precision, and its middle for each update";
  EXPECT_NEAR(0., measured(*all.best, "rmse"), 1e-3);
  EXPECT_LT(measured(all.undelayed, "ccc"), 0.95);
}

TEST_F(AgreementOfLabels, TakesLabelsThatAreNumbersAsValues)
{
  play(1, 10., 5.);
  options.valueQuantity = "valence";
  add(0., 5., "0");
  add(5., 10., "0.5");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_EQ("valence", all.quantity);
  EXPECT_NEAR(1., measured(all.undelayed, "ccc"), 1e-6);
}

TEST_F(AgreementOfLabels, DoesNotJoinValuesAcrossAGap)
{
  play(1, 20., 5.);
  labels.tracks.push_back({"valence", "", "anna", "", {{0., 0.}, {0.5, 0.}, {1., 0.}, {15., 0.}, {15.5, 0.}}});
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_NEAR(2.5, all.undelayed.compared, precision) << "1 s and 0.5 s, and 0.5 s behind the last value of each";
}

TEST_F(AgreementOfLabels, ComparesTwoCodersWithEachOther)
{
  play(1, 10., 5.);
  add(0., 5., "neutral");
  add(5., 10., "positive");
  add(0., 6., "neutral", "", "ben");
  add(6., 12., "positive", "", "ben");
  const Agreement agreement = compare();
  ASSERT_EQ(6U, agreement.comparisons.size());
  const AgreementComparison& coders = agreement.comparisons[4];
  EXPECT_EQ("anna", coders.first);
  EXPECT_EQ("ben", coders.second);
  EXPECT_NEAR(0.9, measured(coders.undelayed, "accuracy"), precision);
  EXPECT_NEAR(1., coders.best->delay, precision);
}

TEST_F(AgreementOfLabels, DrawsIntervalsFromBlocksOrPersons)
{
  for (int person = 1; person <= 5; ++person)
  {
    play(person, 30., 10. + person);
    add(0., 12., "neutral", std::to_string(person));
    add(12., 30., "positive", std::to_string(person));
  }
  const Agreement agreement = compare();
  const AgreementComparison& all = agreement.comparisons[0];
  EXPECT_EQ("persons", all.unit);
  EXPECT_EQ(5U, all.undelayed.units);
  const AgreementComparison& one = agreement.comparisons[1];
  EXPECT_EQ("blocks", one.unit);
  EXPECT_EQ(3U, one.undelayed.units);
  const AgreementMeasure& kappa = all.undelayed.measures[0];
  EXPECT_LT(kappa.low.value(), kappa.value.value());
  EXPECT_GT(kappa.high.value(), kappa.value.value());
}

TEST_F(AgreementOfLabels, HasNoIntervalOfOneBlock)
{
  play(1, 5., 2.);
  add(0., 2., "neutral");
  add(2., 5., "positive");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_EQ(1U, all.undelayed.units);
  EXPECT_FALSE(all.undelayed.measures[0].low);
}

TEST_F(AgreementOfLabels, DrawsNoBlockThatRoundingMade)
{
  play(1, 20., 5.);
  recorder.personUpdated(update(1, 20., 0.5f));
  options.mapping.setUnlabelled("negative");
  add(0., 5., "neutral");
  add(5., 20.1 - 1e-9, "positive");
  play(2, 20., 5.);
  add(0., 5., "neutral", "2");
  add(5., 20. + 1e-9, "positive", "2");
  options.persons = {{"", 1}};
  const Agreement agreement = compare();
  EXPECT_EQ(3U, agreement.comparisons[1].undelayed.units);
  EXPECT_EQ(2U, agreement.comparisons[2].undelayed.units);
}

TEST_F(AgreementOfLabels, FindsPersonsByNameNumberAndTier)
{
  play(1, 10., 5.);
  play(2, 10., 5.);
  options.persons = {{"Anna", 1}, {"right", 2}};
  add(0., 10., "neutral", "Anna");
  add(0., 10., "neutral", "2");
  add(0., 10., "positive", "", "ben", "right");
  add(0., 10., "positive", "Otto");
  add(0., 10., "positive", "9");
  add(0., 10., "positive");
  const Agreement agreement = compare();
  EXPECT_THAT(agreement.warnings,
              ElementsAre("labels left out, because no person of the recording is assigned to them: '' (1), 'Otto' (1)",
                          "labels of persons who are not in the recording left out: '9' (1)"));
  EXPECT_EQ(7U, agreement.comparisons.size()) << "anna: all, 1, 2; ben: all, 2; both: all, 2";
}

TEST_F(AgreementOfLabels, NamesEightOfManyPersonsWhoAreNotThere)
{
  play(1, 10., 5.);
  play(2, 10., 5.);
  add(0., 10., "neutral", "1");
  for (int i = 11; i <= 20; ++i)
    add(0., 10., "positive", std::to_string(i));
  EXPECT_THAT(compare().warnings,
              ElementsAre("labels of persons who are not in the recording left out: '11' (1), '12' (1), '13' (1), "
                          "'14' (1), '15' (1), '16' (1), '17' (1), '18' (1), and 2 more"));
}

TEST_F(AgreementOfLabels, TakesTheOneNameForTheOnePerson)
{
  play(4, 10., 5.);
  add(0., 10., "neutral", "Otto");
  EXPECT_EQ(4, compare().comparisons[1].person.value());
}

TEST_F(AgreementOfLabels, UsesTheChosenTiersAndMovesLabels)
{
  play(1, 10., 5.);
  options.tiers = {"mood"};
  options.offset = 2.;
  add(-2., 3., "neutral", "", "anna", "mood");
  add(3., 8., "positive", "", "anna", "mood");
  add(0., 8., "negative", "", "anna", "other");
  const AgreementComparison all = compare().comparisons[0];
  EXPECT_NEAR(1., measured(all.undelayed, "accuracy"), precision);
  EXPECT_NEAR(10., all.undelayed.compared, precision);
}

TEST_F(AgreementOfLabels, SaysWhyNothingCanBeCompared)
{
  EXPECT_EQ("no label can be compared: nobody was seen in the recording", refusal());
  play(1, 10., 5.);
  EXPECT_EQ("no label can be compared: there is none", refusal());
}

TEST_F(AgreementOfLabels, ComparesAHundredCodersAtMost)
{
  play(1, 10., 5.);
  for (int coder = 0; coder <= 100; ++coder)
    add(0., 10., "positive", "", std::to_string(coder));
  EXPECT_EQ("the labels of pleasure are from 101 coders, expected 100 at most", refusal());
}

TEST_F(AgreementOfLabels, CanBeInterrupted)
{
  struct Ended
  {};
  play(1, 10., 5.);
  add(0., 5., "neutral");
  add(5., 10., "positive");
  options.blockLength = 1.;
  for (const int patience : {1, 50, 500})  // at once, while delays are tried, while intervals are drawn
  {
    int asked = 0;
    const KV::recordings::InterruptionCheck check([&asked, patience] {
      if (++asked == patience)
        throw Ended();
    });
    EXPECT_THROW(compare(), Ended) << patience;
  }
}

TEST_F(AgreementOfLabels, NamesLabelsThatMeanNoState)
{
  play(1, 10., 5.);
  add(0., 1., "smiling");
  add(2., 3., "smiling");
  add(2., 2., "positive");
  labels.tracks.push_back({"value", "", "anna", "", {{0., 0.}}});
  EXPECT_EQ(
      "no label can be compared: labels without a state left out: 'smiling' (2); labels without a "
      "duration left out: 'positive' (1); 1 value left out, because it is not known whether they are valence or "
      "attention",
      refusal());
}

TEST_F(AgreementOfLabels, WarnsOfAnotherScale)
{
  play(1, 10., 5.);
  labels.tracks.push_back({"valence", "", "anna", "", {{0., 4.}, {1., 0.}}});
  EXPECT_THAT(compare().warnings,
              ElementsAre("values outside the range of the estimate: the scale of the coder differs: 'anna' (1)"));
}

TEST_F(AgreementOfLabels, IsWrittenAsJsonAndCsv)
{
  play(1, 30., 5.);
  add(0., 6., "neutral", "", "anna, \"A\"");
  add(6., 30., "positive", "", "anna, \"A\"");
  const Agreement agreement = compare();
  std::ostringstream json;
  writeAsJson(json, agreement);
  const nlohmann::json read = nlohmann::json::parse(json.str());
  const nlohmann::json& all = read["comparisons"][0];
  EXPECT_TRUE(all["person"].is_null());
  EXPECT_EQ(1, read["comparisons"][1]["person"]);
  EXPECT_EQ("kappa", all["undelayed"]["measures"][0]["name"]);
  EXPECT_NEAR(measured(agreement.comparisons[0].undelayed, "kappa"),
              all["undelayed"]["measures"][0]["value"].get<double>(), precision);
  EXPECT_TRUE(all["undelayed"]["measures"][2]["value"].is_null()) << "nobody was negative";
  EXPECT_NEAR(1., all["undelayed"]["confusion"][2][1].get<double>(), precision);
  EXPECT_NEAR(0., all["leftOut"]["noLabel"].get<double>(), precision);

  std::ostringstream csv;
  writeAsCsv(csv, agreement);
  EXPECT_THAT(csv.str(), HasSubstr("quantity,first,second,person,at,delay,measure,class,other_class,value,low,high\n"
                                   "pleasure,estimate,\"anna, \"\"A\"\"\",all,undelayed,0,leftOut,noUpdate,,0,,\n"));
  EXPECT_THAT(csv.str(), HasSubstr(",all,undelayed,0,f1,negative,,,,\n"));
  EXPECT_THAT(csv.str(), HasSubstr(",1,best,1,confusion,negative,negative,0,,\n"));
}

}  // namespace
