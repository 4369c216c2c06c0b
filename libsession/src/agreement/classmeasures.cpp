#include "agreement/classmeasures.hpp"

namespace KV::session
{

std::vector<AgreementMeasure> ClassMeasures::measures(const Unit& unit) const
{
  std::vector<AgreementMeasure> measures{{"kappa", {}, unit.kappa(), {}, {}},
                                         {"accuracy", {}, unit.accuracy(), {}, {}}};
  for (std::size_t i = 0; i < _classes.size(); ++i)
    measures.push_back({"f1", _classes[i], unit.f1(i), {}, {}});
  return measures;
}

std::vector<std::vector<double>> ClassMeasures::confusion(const Unit& unit) const
{
  std::vector<std::vector<double>> table(_classes.size(), std::vector<double>(_classes.size(), 0.));
  for (std::size_t first = 0; first < _classes.size(); ++first)
    for (std::size_t second = 0; second < _classes.size(); ++second)
      table[first][second] = unit.time(first, second);
  return table;
}

}  // namespace KV::session
