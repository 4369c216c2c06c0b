#pragma once

#include <string>
#include <vector>

namespace KV::ros2
{

/// Returns the hashes that writers of a type may have, each as "RIHS01_" and 64 digits; first the one of the newest
/// layout. None for a type that is not known.
///
/// A hash is the SHA-256 of the type's description in JSON, with members in the order of the text and a space behind
/// each colon and comma, as ROS 2 has it since Iron.
std::vector<std::string> typeHashesOf(const std::string& type);

/// Returns the user data of a writer or reader of the type; empty if it is not known.
std::string userDataOf(const std::string& type);

/// Returns the hash in the user data of a writer; empty if they have no hash, as before Iron.
std::string hashIn(const std::string& userData);

}  // namespace KV::ros2
