#include <skeigiot/voiceemotion.hpp>

#include <ostream>

namespace KV
{

VoiceEmotion::VoiceEmotion(ValueConfidence<float> calm, ValueConfidence<float> anger, ValueConfidence<float> joy,
                           ValueConfidence<float> sorrow, ValueConfidence<float> laughter,
                           ValueConfidence<float> excitement)
  : Expressions{calm, anger, joy, sorrow, laughter, excitement, {}}
{}

std::ostream& operator<<(std::ostream& stream, const VoiceEmotion&)
{
  return stream << "Calm : ";
}

}  // namespace KV
