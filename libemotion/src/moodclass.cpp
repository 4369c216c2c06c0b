#include <skeigiot/classification/moodclass.hpp>

namespace KV::classification
{

MoodClass::MoodClass(const std::string& name_, std::int32_t value_, const MoodScore& moodScore_)
  : name(name_), value(value_), moodScore(&moodScore_)
{}

void MoodClass::calculateScore(const std::vector<float>& features)
{
  score = moodScore->calculateScore(*this, features);
}

bool operator>(const MoodClass& left, const MoodClass& right)
{
  return left.score > right.score;
}

}  // namespace KV::classification
