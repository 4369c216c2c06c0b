#include "libsession/entries.hpp"
#include "support/temporaryfolder.hpp"
#include "support/thrown.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/labelexport.hpp>
#include <skeigiot/session/session.hpp>

#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ko::human::AttentionState;
using KV::session::Exporter;
using KV::session::Snapshot;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LabelExport : public ::testing::Test
{
protected:
  void begin(const std::string& coders = "")
  {
    exporter = KV::session::labelExport("audacity", coders).make(stream);
    exporter->writeHeader();
  }

  void update(double time, AttentionState zone, KV::PleasureState pleasure = KV::PleasureUnknown,
              const std::string& name = "")
  {
    Snapshot snapshot = snapshotAt(time);
    snapshot.valence.confidence = 0.f;
    snapshot.attention.confidence = 0.f;
    snapshot.zone = zone;
    snapshot.pleasure = pleasure;
    snapshot.name = name;
    exporter->personUpdated(snapshot);
  }

  void estimate(double time, float valence, float attention)
  {
    Snapshot snapshot = snapshotAt(time, valence, attention);
    snapshot.zone = AttentionState::Unknown;
    snapshot.pleasure = KV::PleasureUnknown;
    exporter->personUpdated(snapshot);
  }

  /// Ends the session, and returns the lines of the track, without needless zeros.
  std::vector<std::string> lines()
  {
    exporter->endSession("");
    std::istringstream input(stream.str());
    std::vector<std::string> all;
    for (std::string line; std::getline(input, line);)
    {
      for (std::size_t zeros = line.find("00000\t"); zeros != std::string::npos; zeros = line.find("00000\t"))
        line.erase(zeros, 5);
      all.push_back(line);
    }
    return all;
  }

  TemporaryFolder folder;
  std::ostringstream stream;
  std::unique_ptr<Exporter> exporter;
};

TEST_F(LabelExport, HasALabelForAsLongAsAZoneLasts)
{
  begin();
  update(0., AttentionState::LookingUp);
  update(0.5, AttentionState::LookingUp);
  update(1., AttentionState::LookingDown);
  update(1.5, AttentionState::Unknown);
  update(2., AttentionState::LookingDown);
  update(2.5, AttentionState::LookingDown);
  EXPECT_THAT(lines(), ElementsAre("0.0\t1.0\tzone: person 0: LookingUp", "1.0\t1.5\tzone: person 0: LookingDown",
                                   "2.0\t2.5\tzone: person 0: LookingDown"));
}

TEST_F(LabelExport, HasNoLabelForAZoneOfTheLastUpdateAlone)
{
  begin();
  update(0., AttentionState::Unknown);
  update(1., AttentionState::LookingUp);
  EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(LabelExport, HasThePleasureUnderTheNameOfThePerson)
{
  begin();
  update(0., AttentionState::Unknown, KV::PleasurePositive);
  update(1., AttentionState::Unknown, KV::PleasureNegative, "anna");
  update(2., AttentionState::Unknown, KV::PleasureUnknown, "anna");
  EXPECT_THAT(lines(), ElementsAre("0.0\t1.0\tpleasure: anna (person 0): positive",
                                   "1.0\t2.0\tpleasure: anna (person 0): negative"));
}

TEST_F(LabelExport, HasTheMeanOfEachSecondInWhichTheEstimateIsKnown)
{
  begin();
  estimate(0.2, 0.5f, 0.25f);
  estimate(0.8, 1.f, 0.75f);
  update(1.5, AttentionState::Unknown);
  estimate(2., -0.001f, std::numeric_limits<float>::quiet_NaN());
  estimate(2.4, -0.001f, 0.f);
  EXPECT_THAT(lines(), ElementsAre("0.0\t1.0\tvalence: person 0: 0.75", "0.0\t1.0\tattention: person 0: 0.50",
                                   "2.0\t2.4\tvalence: person 0: 0.00", "2.0\t2.4\tattention: person 0: 0.00"));
}

TEST_F(LabelExport, HasTheVerdictsOnScopes)
{
  begin();
  KV::session::ScopeVerdict verdict;
  verdict.name = "greeting";
  verdict.from = inNanoseconds(1.);
  verdict.to = inNanoseconds(3.);
  verdict.persons[2].word = "positive";
  exporter->scopeJudged(verdict);
  EXPECT_THAT(lines(), ElementsAre("1.0\t3.0\tverdict: person 2: greeting: positive"));
}

TEST_F(LabelExport, KeepsTheLabelsOfTheCoder)
{
  begin(folder.write("coder.txt", "0\t1\tsmiles\n"));
  update(0., AttentionState::LookingUp);
  update(1., AttentionState::LookingUp);
  EXPECT_THAT(lines(), ElementsAre("0\t1\tsmiles", "0.0\t1.0\tzone: person 0: LookingUp"));
}

TEST_F(LabelExport, OfElanIsReadAgain)
{
  exporter = KV::session::exportFormat("eaf").make(stream);
  update(0., AttentionState::LookingUp, KV::PleasureNeutral, "anna");
  update(1.5, AttentionState::LookingDown, KV::PleasureNeutral, "anna");
  update(2., AttentionState::LookingDown, KV::PleasureNeutral, "anna");
  exporter->endSession("");
  const auto labels = KV::recordings::readLabels(folder.write("out.eaf", stream.str()));
  ASSERT_EQ(3U, labels.spans.size());
  EXPECT_EQ("LookingUp", labels.spans[0].label);
  EXPECT_EQ("zone: anna (person 0)", labels.spans[0].tier);
  EXPECT_EQ("anna", labels.spans[0].person);
  EXPECT_EQ("skeigiot", labels.spans[0].coder);
  EXPECT_EQ(1.5, labels.spans[1].from);
  EXPECT_EQ("pleasure: anna (person 0)", labels.spans[2].tier);
}

TEST_F(LabelExport, IsOneOfTwoFormatsOfOneSession)
{
  EXPECT_TRUE(KV::session::isLabelExport("eaf"));
  EXPECT_TRUE(KV::session::isLabelExport("audacity"));
  EXPECT_FALSE(KV::session::isLabelExport("csv"));
  EXPECT_EQ("a document of ELAN is about one recording", KV::session::exportFormat("eaf").oneSession);
  EXPECT_EQ("a label track is about one recording", KV::session::exportFormat("audacity").oneSession);
  EXPECT_EQ("'csv' is no export of labels: expected eaf or audacity",
            support::textThrownBy<std::invalid_argument>([] { KV::session::labelExport("csv", ""); }));
  EXPECT_THROW(KV::session::labelExport("eaf", folder.path("missing")), KV::recordings::Error);
}

}  // namespace
