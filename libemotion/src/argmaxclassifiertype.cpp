#include <skeigiot/classification/argmaxclassifiertype.hpp>

#include <algorithm>
#include <functional>
#include <stdexcept>

namespace KV::classification
{

MoodClass& ArgmaxClassifierType::classify(const MoodClassifier&, std::vector<MoodClass>& classes) const
{
  std::sort(classes.begin(), classes.end(), std::greater<MoodClass>());
  const float lead = classes[0].score - classes[1].score;
  if (lead > _threshold)
    return classes[0];
  throw std::runtime_error("unknown state: no clear winner found");
}

}  // namespace KV::classification
