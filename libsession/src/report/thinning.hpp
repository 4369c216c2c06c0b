#pragma once

#include "report/moment.hpp"

#include <skeigiot/session/snapshot.hpp>

#include <vector>

namespace KV::session
{

/// Removes moments of one person where many are in one stretch of time of the given length.
///
/// Of each stretch these stay: the first moment; the least and the greatest of every estimate and every input; the
/// first one with each kind of event; and the first that changes the zone, the pleasure, the visibility, or whether an
/// estimate is known. The last moment of all stays, too. The changes of removed moments are added to those of the next
/// moment that stays.
///
/// Thinning with one length and then with a multiple of it keeps the extremes of the original.
void thin(std::vector<Moment>& moments, Duration stretch);

}  // namespace KV::session
