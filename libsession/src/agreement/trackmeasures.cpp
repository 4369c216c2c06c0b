#include "agreement/trackmeasures.hpp"

namespace KV::session
{

std::vector<AgreementMeasure> TrackMeasures::measures(const Unit& unit)
{
  return {{"ccc", {}, unit.ccc(), {}, {}}, {"pearson", {}, unit.pearson(), {}, {}}, {"rmse", {}, unit.rmse(), {}, {}}};
}

}  // namespace KV::session
