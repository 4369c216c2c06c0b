#include <skeigiot/session/labelmapping.hpp>

#include <skeigiot/personstate.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/names.hpp>

#include <stdexcept>

namespace KV::session
{

namespace
{

std::string smallLetters(std::string text)
{
  for (char& letter : text)
    if (letter >= 'A' && letter <= 'Z')
      letter = static_cast<char>(letter - 'A' + 'a');
  return text;
}

boost::optional<LabelState> stateNamed(const std::string& name)
{
  const std::string small = smallLetters(name);
  for (std::size_t quantity = 0; quantity < labelQuantities().size(); ++quantity)
  {
    const std::vector<std::string>& classes = labelQuantities()[quantity].classes;
    for (std::size_t state = 0; state < classes.size(); ++state)
      if (smallLetters(classes[state]) == small)
        return LabelState{quantity, state};
  }
  return boost::none;
}

LabelState stateOrRefusal(const std::string& name)
{
  const boost::optional<LabelState> state = stateNamed(name);
  if (state)
    return *state;
  std::string names;
  for (const LabelQuantity& quantity : labelQuantities())
    for (const std::string& known : quantity.classes)
      names += (names.empty() ? "" : ", ") + known;
  throw std::invalid_argument("expected a state, one of " + names + ", found " + recordings::quote(name));
}

}  // namespace

const std::vector<LabelQuantity>& labelQuantities()
{
  static const std::vector<LabelQuantity> quantities = [] {
    LabelQuantity pleasure{"pleasure", {}};
    for (const KV::PleasureState state : {KV::PleasureNegative, KV::PleasureNeutral, KV::PleasurePositive})
      pleasure.classes.push_back(pleasureName(state));
    LabelQuantity zone{"zone", {}};
    for (const auto& [state, name] : KV::attentionZonesStringMapping)
      zone.classes.push_back(name);
    return std::vector<LabelQuantity>{pleasure, {"engagement", {"not-engaged", "engaged"}}, zone};
  }();
  return quantities;
}

void LabelMapping::add(const std::string& text)
{
  const std::size_t equals = text.rfind('=');
  if (equals == std::string::npos || equals == 0)
    throw std::invalid_argument("expected LABEL=STATE, found " + recordings::quote(text));
  const std::string label = text.substr(0, equals);
  const LabelState state = stateOrRefusal(text.substr(equals + 1));
  if (!_states.emplace(smallLetters(label), state).second)
    throw std::invalid_argument("the label " + recordings::quote(label) + " is mapped twice");
}

void LabelMapping::setUnlabelled(const std::string& name)
{
  const LabelState state = stateOrRefusal(name);
  if (!_unlabelled.emplace(state.quantity, state.state).second)
    throw std::invalid_argument("time without a label has two states of " + labelQuantities()[state.quantity].name);
}

boost::optional<LabelState> LabelMapping::stateOf(const std::string& label) const
{
  const auto found = _states.find(smallLetters(label));
  if (found != _states.end())
    return found->second;
  return stateNamed(label);
}

boost::optional<std::size_t> LabelMapping::unlabelled(std::size_t quantity) const
{
  const auto found = _unlabelled.find(quantity);
  if (found == _unlabelled.end())
    return boost::none;
  return found->second;
}

}  // namespace KV::session
