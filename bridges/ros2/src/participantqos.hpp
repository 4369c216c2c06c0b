#pragma once

#include <skeigiot/ros2/busoptions.hpp>

#include <fastdds/dds/domain/qos/DomainParticipantQos.hpp>

#include <string>

namespace KV::ros2
{

/// Returns how to take part in a domain: on which interfaces, and where other nodes are looked for.
///
/// \throws std::runtime_error for a static peer that is no IPv4 address.
eprosima::fastdds::dds::DomainParticipantQos participantQosOf(const BusOptions& options);

/// Sets the text that others see in the description of a participant, reader or writer.
void setUserData(eprosima::fastdds::dds::UserDataQosPolicy& policy, const std::string& text);

}  // namespace KV::ros2
