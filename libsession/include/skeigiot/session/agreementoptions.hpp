#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/labelmapping.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace KV::session
{

/// How labels are compared with the estimate.
struct SKEIGIOT_API AgreementOptions
{
  LabelMapping mapping;         ///< which label means which state
  std::set<std::string> tiers;  ///< only labels of these; empty: of all
  /// Number of the person that labels call so; "" is who is meant by labels that name nobody.
  std::map<std::string, std::int32_t> persons = {};
  std::string valueQuantity = {};  ///< what values are that have no name of their own: "valence", "attention" or empty
  boost::optional<std::pair<double, double>>
      scale;                      ///< the coders' least and greatest value; nothing: as the estimate's
  double offset = 0.;             ///< [s] added to all times of the labels
  double maximalDelay = 5.;       ///< [s] delays are tried from minus this to this
  double delayStep = 0.1;         ///< [s] between delays that are tried
  double blockLength = 10.;       ///< [s] of the blocks of time from which intervals are drawn
  std::size_t fewestPersons = 5;  ///< with so many persons, intervals are drawn from persons
  std::size_t resamples = 1000;   ///< how often intervals are drawn
  std::uint64_t seed = 1;         ///< of the generator that draws them
};

/// Adds "NAME=NUMBER" to the persons, or "NUMBER" alone for the name "".
///
/// \throws std::invalid_argument if it is not that, or the name is there already.
SKEIGIOT_API void parseLabelPerson(const std::string& text, std::map<std::string, std::int32_t>& persons);

/// Reads "FROM..TO", a scale.
///
/// \throws std::invalid_argument if it is not that, or both ends are the same.
SKEIGIOT_API std::pair<double, double> parseLabelScale(const std::string& text);

}  // namespace KV::session
