#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/expressions.hpp>

#include <iosfwd>

namespace KV
{

/// Emotional scores of a person's voice. Stores its values unchanged; default all 0.
///
/// The getters hide the members of the same names, which stay reachable through Expressions. A voice analyser has no
/// score for surprise: that member is inherited, stays 0, and has no getter.
struct SKEIGIOT_API VoiceEmotion : Expressions
{
  /// Makes scores that are all 0, with confidence 0.
  VoiceEmotion() = default;
  /// Stores the six scores as they are given.
  VoiceEmotion(ValueConfidence<float> calm, ValueConfidence<float> anger, ValueConfidence<float> joy,
               ValueConfidence<float> sorrow, ValueConfidence<float> laughter, ValueConfidence<float> excitement);

  ValueConfidence<float> calm() const { return Expressions::calm; }              ///< a copy
  ValueConfidence<float> anger() const { return Expressions::anger; }            ///< a copy
  ValueConfidence<float> joy() const { return Expressions::joy; }                ///< a copy
  ValueConfidence<float> sorrow() const { return Expressions::sorrow; }          ///< a copy
  ValueConfidence<float> laughter() const { return Expressions::laughter; }      ///< a copy
  ValueConfidence<float> excitement() const { return Expressions::excitement; }  ///< a copy
};

/// Writes "Calm : " and nothing else.
///
/// Deliberate: this terse form is the defined output, without a score and without a line end.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const VoiceEmotion& emotion);

}  // namespace KV
