#include "support/command.hpp"
#include "support/temporaryfolder.hpp"

#include <skeigiot/session/forcenames.hpp>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <vector>

namespace
{

using namespace replaytests;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;
using Texts = std::vector<std::string>;

class WhyCommand : public ::testing::Test
{
protected:
  /// Asks about the recording, whose persons are 1 and 2.
  CommandResult why(const Texts& options) const
  {
    Texts arguments{"why", recording};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runCommand(arguments);
  }

  Json asJson(Texts options) const
  {
    options.emplace_back("--json");
    const CommandResult result = why(options);
    EXPECT_EQ("", result.errors);
    return Json::parse(result.output);
  }

  static void expectRefusal(const CommandResult& result, const std::string& error)
  {
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.output);
    EXPECT_THAT(result.errors, StartsWith("skeigiot: " + error));
  }

  TemporaryFolder folder;
  const std::string recording = folder.write("hand.csv",
                                             "time,person,reading,value,yaw,pitch\n"
                                             "0,,ambiance.activity,0.1,,\n"
                                             "1,1,touchEmotion,1,,\n"
                                             "2,1,touchEmotion,-1,,\n"
                                             "2,1,gaze,,0,0\n"
                                             "3,2,touchEmotion,1,,\n"
                                             "4,1,seen,false,,\n"
                                             "5,,ambiance.activity,0.1,,\n");
};

TEST_F(WhyCommand, ShowsTheForcesOfAnUpdateAndSaysWhatTheyDid)
{
  const CommandResult result = why({"--person", "1", "--at", "2"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.errors);
  EXPECT_THAT(result.output, StartsWith("Person 1 at 0:02.0 (2 s)\n\nsource "));
  EXPECT_THAT(result.output, HasSubstr("\nTouch ×2  "));
  EXPECT_THAT(result.output, HasSubstr("\nGaze and head  "));
  EXPECT_THAT(result.output, HasSubstr("\nvalence fell from 0.65 to "));
  EXPECT_THAT(result.output, HasSubstr("touch (mixed) pulled 100 %\n"));
  EXPECT_THAT(result.output, HasSubstr("\nthe zone changed from Unknown to LookingAtRobot, decided by: attention\n"));
}

TEST_F(WhyCommand, SaysWhatIsUnknown)
{
  const std::string first = why({"--person", "1", "--at", "1"}).output;
  EXPECT_THAT(first, HasSubstr("\nvalence was unknown, and is now 0.65: touch (positive) pulled 100 %\n"));
  EXPECT_THAT(first, HasSubstr("\nattention is unknown\n"));
  const Json json = asJson({"--person", "1", "--at", "1"});
  EXPECT_EQ(false, json["before"]["valenceKnown"]);
  EXPECT_EQ(true, json["after"]["valenceKnown"]);
  EXPECT_EQ(false, json["after"]["attentionKnown"]);
}

TEST_F(WhyCommand, ShowsEveryForceIfThatIsWanted)
{
  const std::string output = why({"--person", "1", "--at", "2", "--all"}).output;
  EXPECT_THAT(output, Not(HasSubstr("×")));
  EXPECT_THAT(output, HasSubstr("unsmoothed valence confidence"));
}

TEST_F(WhyCommand, ExplainsTheLastUpdateBeforeTheTime)
{
  const std::string at2 = why({"--person", "1", "--at", "2"}).output;
  EXPECT_EQ(at2, why({"--person", "1", "--at", "3.999999999"}).output);
  EXPECT_NE(at2, why({"--person", "1", "--at", "1.999999999"}).output);
  EXPECT_THAT(why({"--person", "1", "--at", "5"}).output, StartsWith("Person 1 at 0:04.0 (4 s), not seen\n"));
}

TEST_F(WhyCommand, HasEachForceAndItsStatesForPrograms)
{
  const Json json = asJson({"--person", "1", "--at", "2"});
  EXPECT_EQ(recording, json["recording"]);
  EXPECT_EQ(1, json["person"]);
  EXPECT_EQ(2., json["time"]);
  EXPECT_EQ(true, json["seen"]);
  std::map<std::string, float> state;
  for (const Json& force : json["forces"])
  {
    EXPECT_EQ(2., force["time"]);
    EXPECT_EQ(KV::session::sourceName(force["source"].get<std::string>()), force["sourceName"]);
    const std::string quantity = force["quantity"];
    const auto before = force["before"].get<float>();
    const auto after = force["after"].get<float>();
    const auto [known, isNew] = state.emplace(quantity, before);
    EXPECT_EQ(known->second, before) << quantity << " before " << force["source"];
    EXPECT_EQ(after, before + force["weight"].get<float>() * (force["target"].get<float>() - before));
    state[quantity] = after;
  }
  EXPECT_EQ(6u, state.size());
  EXPECT_EQ(state["valence"], json["after"]["valence"].get<float>());
  EXPECT_EQ(state["valence confidence"], json["after"]["valenceConfidence"].get<float>());
  EXPECT_EQ(state["attention"], json["after"]["attention"].get<float>());
  EXPECT_EQ(state["attention confidence"], json["after"]["attentionConfidence"].get<float>());
  EXPECT_EQ(json["forces"][0]["before"], json["before"]["valence"]);
  EXPECT_EQ("Unknown", json["before"]["zone"]);
  EXPECT_EQ("LookingAtRobot", json["after"]["zone"]);
  EXPECT_EQ(Json::parse(R"([{"time":2.0,"from":"Unknown","to":"LookingAtRobot","evidence":"attention"}])"),
            json["zoneChanges"]);
  EXPECT_EQ(3u, json["sentences"].size());
}

TEST_F(WhyCommand, GivesEachSourceItsShareOverASpan)
{
  const CommandResult result = why({"--person", "1", "--from", "1.5", "--to", "4"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.output, StartsWith("Person 1 from 0:02.0 (2 s) to 0:04.0 (4 s), 2 updates\n"));

  const Json json = asJson({"--person", "1", "--from", "1.5", "--to", "4"});
  EXPECT_EQ(2, json["updates"]);
  EXPECT_EQ(2., json["first"]);
  EXPECT_EQ(4., json["last"]);
  EXPECT_EQ(asJson({"--person", "1", "--at", "1"})["after"], json["before"]);
  std::map<std::string, double> sums;
  std::map<std::string, double> nets;
  for (const Json& share : json["shares"])
  {
    EXPECT_EQ(KV::session::sourceName(share["source"].get<std::string>()), share["sourceName"]);
    sums[share["quantity"]] += share["share"].get<double>();
    nets[share["quantity"]] += share["net"].get<double>();
  }
  for (const auto& [quantity, sum] : sums)
    EXPECT_NEAR(1., sum, 1e-12) << quantity;
  EXPECT_EQ(6u, sums.size());
  const double change = json["after"]["valence"].get<double>() - json["before"]["valence"].get<double>();
  EXPECT_NEAR(change, nets["valence"], 1e-6) << "what all sources did together is the change";
}

TEST_F(WhyCommand, TakesTheWholeRecordingWhereASpanIsOpen)
{
  EXPECT_EQ(3, asJson({"--person", "1", "--from", "0"})["updates"]);
  EXPECT_EQ(2, asJson({"--person", "1", "--to", "3"})["updates"]);
}

TEST_F(WhyCommand, ExplainsAnUpdateInAMergedSessionByAllInputs)
{
  const std::string touch = folder.write("touch.csv", "time,person,reading,value\n1,1,touchEmotion,1\n");
  const std::string voice = folder.write("voice.csv", "time,person,reading,value\n0.5,1,voiceEmotion.anger,1\n");
  const CommandResult result =
      runCommand({"why", touch, voice, "--offset", voice + "=0.5", "--person", "1", "--at", "0"});
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_THAT(result.output, HasSubstr("\nTouch  "));
  EXPECT_THAT(result.output, HasSubstr("\nVoice \u00d7"));
}

TEST_F(WhyCommand, NamesThePersonsWhoAreThereIfOneIsNot)
{
  expectRefusal(why({"--person", "9", "--at", "2"}), recording + ": there is no person 9; known are: 1, 2\n");
}

TEST_F(WhyCommand, TakesTheOnlyPersonAndTheMomentOfTheGreatestChange)
{
  const std::string one = folder.write("one.csv",
                                       "time,person,reading,value,yaw,pitch\n"
                                       "0,7,touchEmotion,1,,\n"
                                       "0,7,gaze,,0,0\n"
                                       "1,7,gaze,,0,0\n"
                                       "2,7,touchEmotion,-1,,\n"
                                       "2.1,7,gaze,,0,0\n"
                                       "4,7,gaze,,0,0\n");
  const CommandResult result = runCommand({"why", one});
  EXPECT_EQ(0, result.status) << result.errors;
  EXPECT_THAT(result.output, StartsWith("Person 7 at 0:02.0 (2 s), the greatest change\n"))
      << "not at 0, where nothing was known before, though the valence rises by more";
  EXPECT_EQ(runCommand({"why", one, "--at", "2", "--json"}).output, runCommand({"why", one, "--json"}).output);
  EXPECT_THAT(runCommand({"why", one, "--from", "1"}).output, StartsWith("Person 7 from 0:01.0 (1 s) to 0:04.0 (4 s)"));
}

TEST_F(WhyCommand, TakesTheFirstUpdateOfAPersonOfWhomThereIsOneOnly)
{
  EXPECT_THAT(why({"--person", "2"}).output, StartsWith("Person 2 at 0:03.0 (3 s)"));
}

TEST_F(WhyCommand, WantsToKnowWhomOfSeveralPersons)
{
  const std::string error =
      recording + ": there are several persons: 1, 2; give the number of one of them (--person)\n";
  expectRefusal(why({}), error);
  expectRefusal(why({"--at", "1"}), error);
  expectRefusal(why({"--from", "1"}), error);
}

TEST_F(WhyCommand, SaysThatNobodyWasSeen)
{
  const std::string room = folder.write("room.csv", "time,reading,value\n0,ambiance.activity,0.1\n");
  expectRefusal(runCommand({"why", room, "--person", "1", "--at", "0"}),
                room + ": nobody was seen in this recording\n");
}

TEST_F(WhyCommand, SaysWhatTheRecordingSpansIfATimeIsOutside)
{
  const std::string error = recording + ": 5.5 s is outside the recording, which spans 0 s to 5 s\n";
  expectRefusal(why({"--person", "1", "--at", "5.5"}), error);
  expectRefusal(why({"--person", "1", "--from", "5.5"}), error);
  expectRefusal(why({"--person", "1", "--to", "5.5"}), error);
}

TEST_F(WhyCommand, SaysFromWhenOnAPersonIsKnown)
{
  expectRefusal(why({"--person", "2", "--at", "2.5"}),
                recording + ": person 2 is not known at 2.5 s, but from 3 s on\n");
  expectRefusal(why({"--person", "1", "--from", "2.5", "--to", "3"}),
                recording + ": person 1 was not updated from 2.5 s to 3 s, but from 1 s to 4 s\n");
}

TEST_F(WhyCommand, RefusesTimesThatDoNotGoTogether)
{
  expectRefusal(why({"--person", "1", "--at", "1", "--to", "2"}), "--at: is one moment");
  expectRefusal(why({"--person", "1", "--from", "2", "--to", "1"}), "--to: the span ends before it begins\n");
  expectRefusal(why({"--person", "1", "--at", "-1"}), "--at: expected a time in seconds since the start");
  expectRefusal(why({"--person", "1.5", "--at", "1"}), "--person: expected a whole number");
}

TEST_F(WhyCommand, TakesOneRecordingOfAFolder)
{
  folder.write("second.csv", folder.read("hand.csv"));
  expectRefusal(runCommand({"why", folder.path(""), "--person", "1", "--at", "1"}),
                "RECORDING: there are several in the folder: name one of them\n");
}

TEST_F(WhyCommand, StopsAtABadLineUnlessThatIsToBeSkipped)
{
  const std::string bad =
      folder.write("bad.csv", "time,person,reading,value\n0,1,touchEmotion,1\n1,1,smile,wide\n2,1,touchEmotion,1\n");
  expectRefusal(runCommand({"why", bad, "--person", "1", "--at", "2"}), bad + ":3: value: expected a number");
  const CommandResult skipped = runCommand({"why", bad, "--person", "1", "--at", "2", "--skip-bad"});
  EXPECT_EQ(0, skipped.status);
  EXPECT_THAT(skipped.errors, HasSubstr(bad + ": skipped 1 bad line, the first: " + bad + ":3: "));
  EXPECT_EQ(0, runCommand({"why", bad, "--person", "1", "--at", "0.5", "--skip-bad"}).status);
}

TEST_F(WhyCommand, LeavesOutReadingsThatAreNotFiniteAndSaysSo)
{
  const std::string broken =
      folder.write("broken.jsonl",
                   R"({"time":0,"person":1,"observation":{"gaze":{"yaw":"NaN","pitch":0},"touchEmotion":{"value":1}}})"
                   "\n");
  const CommandResult result = runCommand({"why", broken, "--person", "1", "--at", "0"});

  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.errors, HasSubstr("broken.jsonl: left out 1 reading with numbers that are not finite, the first "
                                       "of person 1 at 0:00.000"));
}

}  // namespace
