#include <skeigiot/classification/moodclassifier.hpp>

namespace KV::classification
{

MoodClassifier::MoodClassifier(const MoodClassifierType& type) : _type(&type) {}

MoodClassifier::~MoodClassifier() = default;

MoodClass& MoodClassifier::classify(std::vector<MoodClass>& classes) const
{
  return _type->classify(*this, classes);
}

}  // namespace KV::classification
