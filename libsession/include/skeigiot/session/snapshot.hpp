#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/session/duration.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <ko/human/attentionstate.hpp>

#include <cstdint>
#include <string>

namespace KV::session
{

/// The estimate of one person after one update: a copy, which later updates do not change.
struct SKEIGIOT_API Snapshot
{
  TimePoint time;          ///< on the clock of the recording
  Duration sinceStart{0};  ///< since the first step of the recording
  bool isDated = true;     ///< false: `time` has no date, see recordings::Reader::isDated(); `sinceStart` holds

  std::int32_t person = 0;  ///< whose update it was
  std::string name;         ///< what the recording calls the person, in UTF-8; empty: by the number alone
  bool seen = true;         ///< false: the person was not observed in this cycle so far

  KV::ValueConfidence<float> valence;                                   ///< in [-1, 1]
  KV::ValueConfidence<int> valenceBinary;                               ///< -1, 0 or 1
  KV::ValueConfidence<int> unsmoothedValenceBinary;                     ///< -1, 0 or 1
  KV::ValueConfidence<float> attention;                                 ///< in [0, 1]
  ko::human::AttentionState zone = ko::human::AttentionState::Unknown;  ///< where the person looks
  KV::PleasureState pleasure = KV::PleasureUnknown;                     ///< the mood, in a word
  KV::BodyLanguageEase ease;  ///< from the head postures; level in [-0.5, 0.5]

  /// Whether a source of valence ever acted on the person, see PersonState::hadValenceEvidence().
  bool hadValenceEvidence = true;

  /// \name Unknown estimates
  /// The one rule of what is unknown: an estimate that never had evidence, or whose confidence is 0 (or NaN) again. Its
  /// number means nothing. Do not show it, draw it or average it: say "unknown".
  /// @{
  bool isValenceKnown() const { return hadValenceEvidence && valence.confidence > 0.f; }  ///< both valences
  bool isAttentionKnown() const { return attention.confidence > 0.f; }                    ///< the attention
  bool isEaseKnown() const { return ease.confidence > 0.f; }                              ///< the ease
  /// @}
};

}  // namespace KV::session
