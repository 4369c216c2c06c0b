#pragma once

#include "ros4hri/ros4hripersons.hpp"
#include "ros4hri/ros4hristeps.hpp"
#include "ros4hri/ros4hritopics.hpp"
#include "ros4hri/rosmessages.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Makes steps out of messages, each of which comes with its topic: from a bag, or from the wire.
///
/// Not synchronised.
class Ros4hriDispatch
{
public:
  explicit Ros4hriDispatch(const ReadingOptions& options);
  Ros4hriDispatch(const Ros4hriDispatch&) = delete;
  Ros4hriDispatch& operator=(const Ros4hriDispatch&) = delete;

  /// Lets the time go on; it must be called before what happens at that time.
  void advance(RosbagCycles::TimePoint time);

  /// Takes a message that says who has which face or voice; of other topics, nothing.
  ///
  /// Where all messages are at hand, as in a bag, these are taken first: a person whose face is found anew stays the
  /// same. \throws RosMessageError for a message that does not hold what its type says.
  void takePerson(const RosTopic& topic, RosData& data);

  /// Takes a message of any other topic.
  ///
  /// \throws RosMessageError for a message that does not hold what its type says.
  void take(const RosTopic& topic, RosData& data);

  /// Ends the last step.
  void finish();

  /// Returns the next step that is complete, or nothing.
  boost::optional<Step> next();

  /// Returns a warning for each kind of frames that was missing. The answer is final after finish().
  std::vector<std::string> warnings() const;

  /// Says who has which number.
  std::string describePersons() const;

  /// Says what was learned of the faces at rest, a line each.
  std::vector<std::string> describeLearned() const { return _cycles.describeLearned(); }

private:
  void _takeSpeech(const std::string& voice, RosData& data);

  RosbagPersons _persons;
  RosbagCycles _cycles;  // refers to _persons
};

}  // namespace KV::recordings
