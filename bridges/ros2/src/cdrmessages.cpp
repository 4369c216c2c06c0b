#include "cdrmessages.hpp"

#include "cdrwriter.hpp"

namespace KV::ros2
{

CdrBytes cdrOf(const EngagementMessage& message)
{
  return (CdrWriter().header(message.stamp) << message.level).bytes();
}

CdrBytes cdrOf(const ExpressionMessage& message)
{
  return (CdrWriter().header(message.stamp)
          << message.expression << message.valence << message.arousal << message.confidence)
      .bytes();
}

CdrBytes cdrOf(const GazeMessage& message)
{
  return (CdrWriter().header(message.stamp) << message.sender << message.receiver).bytes();
}

CdrBytes cdrOf(const DiagnosticMessage& message)
{
  const std::string noHardware;
  CdrWriter writer;
  writer.header(message.stamp).count(1) << message.level << message.name << message.message << noHardware;
  writer.count(message.values.size());
  for (const auto& [name, value] : message.values)
    writer << name << value;
  return writer.bytes();
}

CdrBytes cdrOf(const TextMessage& message)
{
  return (CdrWriter() << message.text).bytes();
}

CdrBytes cdrOf(const NodeMessage& message, Distribution distribution)
{
  CdrWriter writer;
  writer.gid(message.participant, distribution).count(1) << std::string("/") << message.name;
  for (const std::vector<Gid>* gids : {&message.readers, &message.writers})
  {
    writer.count(gids->size());
    for (const Gid& gid : *gids)
      writer.gid(gid, distribution);
  }
  return writer.bytes();
}

}  // namespace KV::ros2
