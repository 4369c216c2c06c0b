#pragma once

#include "study/database.hpp"

#include <nlohmann/json.hpp>

namespace KV::session
{

/// Returns the sessions with a small picture of each person.
///
/// Of a session whose updates are in the results, a picture has the means of valence and attention in equal stretches
/// of time. Of other sessions it has the means of each scope. Numbers are whole thousandths, and null where an estimate
/// is unknown.
///
/// \return the members "sessions", "stretches", "scopeNames", and "withoutPicture": the number of persons of sessions
///   without a picture, also of sessions that are not listed
nlohmann::ordered_json studyPictures(Database& database);

}  // namespace KV::session
