#pragma once

#include <skeigiot/ros2/busoptions.hpp>
#include <skeigiot/ros2/messages.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace KV::ros2
{

using CdrBytes = std::vector<char>;

// Each writes a message in CDR, little endian, with the four bytes in front that say so.

CdrBytes cdrOf(const EngagementMessage& message);
CdrBytes cdrOf(const ExpressionMessage& message);
CdrBytes cdrOf(const GazeMessage& message);
CdrBytes cdrOf(const DiagnosticMessage& message);
CdrBytes cdrOf(const TextMessage& message);

/// The id of a reader or writer in DDS.
using Gid = std::array<std::uint8_t, 16>;

/// rmw_dds_common/msg/ParticipantEntitiesInfo: the node that owns these readers and writers of a participant.
struct NodeMessage
{
  Gid participant{};
  std::string name;
  std::vector<Gid> readers;
  std::vector<Gid> writers;
};

CdrBytes cdrOf(const NodeMessage& message, Distribution distribution);

}  // namespace KV::ros2
