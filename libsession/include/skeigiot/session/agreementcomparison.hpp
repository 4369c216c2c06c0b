#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/agreementatdelay.hpp>

#include <boost/optional/optional.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace KV::session
{

/// How the estimate and a coder, or two coders, agree on one quantity.
struct SKEIGIOT_API AgreementComparison
{
  /// The time that was not compared, [s]. Each moment counts once, for the first reason that holds.
  struct LeftOut
  {
    double noUpdate = 0.;         ///< labelled, but the person was not updated: outside of the recording, or in a gap
    double noLabel = 0.;          ///< updated, but a side has no label
    double contradiction = 0.;    ///< labels of one coder contradict each other
    double notSeen = 0.;          ///< the person was not observed
    double unknownEstimate = 0.;  ///< the confidence of the estimate is below the boundary, or it has no zone
  };

  std::string quantity;  ///< "pleasure", "engagement" or "zone" (classes), "valence" or "attention" (tracks)
  std::string first;     ///< "estimate", or the name of a coder
  std::string second;    ///< the name of a coder
  boost::optional<std::int32_t> person;  ///< nothing: all persons together
  std::vector<std::string> classes;      ///< their names, in the order of the confusion table; empty for tracks
  std::string unit;                      ///< what the intervals were drawn from: "persons" or "blocks"
  double blockLength = 0.;               ///< [s] of blocks
  LeftOut leftOut;                       ///< without a delay
  AgreementAtDelay undelayed;            ///< at the times that the labels have
  /// At the delay at which kappa, or the concordance correlation, is greatest; nothing if it is defined at none.
  boost::optional<AgreementAtDelay> best;
};

}  // namespace KV::session
