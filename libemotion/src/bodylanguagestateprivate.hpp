#pragma once

#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/shorttermmemory.hpp>

namespace KV
{

/// The record behind BodyLanguageState.
struct BodyLanguageStatePrivate
{
  /// Sets the ease to the mean score of the remembered head postures; an empty memory leaves it as it was.
  void _update(ShortTermMemory<HeadPosture>& memory);

  /// Returns the score of one posture: up -0.5, down 0.5, left -0.5, right 0.5, else 0; the first that holds decides.
  ///
  /// Deliberate: left counts as discomfort and right as ease.
  static float estimateFromHeadPosture(const HeadPosture& posture);

  BodyLanguageEase ease;
};

}  // namespace KV
