#pragma once

#include <skeigiot/api.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace KV::session
{

/// A quantity that has classes, and their names.
struct SKEIGIOT_API LabelQuantity
{
  std::string name;                  ///< "pleasure", "engagement" or "zone"
  std::vector<std::string> classes;  ///< names of the states
};

/// A state of a person, as coders and the estimate know it.
struct SKEIGIOT_API LabelState
{
  std::size_t quantity = 0;  ///< index in labelQuantities()
  std::size_t state = 0;     ///< index in its classes
};

/// Returns the quantities: pleasure (negative, neutral, positive), engagement (not-engaged, engaged), and zone
/// (LookingAtRobot, LookingUp, ...).
SKEIGIOT_API const std::vector<LabelQuantity>& labelQuantities();

/// Says which label means which state. Labels are compared without regard to the case of ASCII letters.
///
/// The name of a state is a label that means it, unless it is mapped to something else.
class SKEIGIOT_API LabelMapping
{
public:
  /// Adds "LABEL=STATE". The label may hold "=": the last one counts.
  ///
  /// \throws std::invalid_argument if it is not that, there is no such state, or the label is mapped already.
  void add(const std::string& text);

  /// Takes the name of a state: time without a label counts as that state, for its quantity.
  ///
  /// \throws std::invalid_argument if there is no such state, or the quantity has another one already.
  void setUnlabelled(const std::string& name);

  /// Returns what the label means; nothing if nobody said.
  boost::optional<LabelState> stateOf(const std::string& label) const;

  /// Returns the index of the class that stands for time without a label; nothing if such time is left out.
  boost::optional<std::size_t> unlabelled(std::size_t quantity) const;

private:
  std::map<std::string, LabelState> _states;  // by label in small letters
  std::map<std::size_t, std::size_t> _unlabelled;
};

}  // namespace KV::session
