#include "labels/elanwriting.hpp"

#include "input/xmlmemory.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr unsigned int parsing = pugi::parse_full | pugi::parse_ws_pcdata_single;
constexpr const char* ownType = "skeigiot";  // linguistic type of the tiers that are replaced when there are new ones
constexpr const char* coderType = "default-lt";  // as ELAN calls that of a new tier
constexpr const char* newDocument =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<ANNOTATION_DOCUMENT AUTHOR="" DATE="1970-01-01T00:00:00+00:00" FORMAT="3.0" VERSION="3.0" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:noNamespaceSchemaLocation="http://www.mpi.nl/tools/elan/EAFv3.0.xsd">
<HEADER MEDIA_FILE="" TIME_UNITS="milliseconds"/><TIME_ORDER/></ANNOTATION_DOCUMENT>)";  // the same bytes each time

using Milliseconds = std::int64_t;

Milliseconds millisecondsOf(double seconds)
{
  return std::max<Milliseconds>(0, std::llround(seconds * 1e3));
}

/// Replaces characters that XML does not allow, even as references.
std::string allowedText(const std::string& text)
{
  std::string allowed;
  for (const char character : text)
  {
    const auto code = static_cast<unsigned char>(character);
    const bool isAllowed = code >= 0x20U || character == '\t' || character == '\n' || character == '\r';
    allowed += isAllowed ? std::string(1, character) : "\xEF\xBF\xBD";
  }
  return allowed;
}

/// Returns the number at the end of an identifier such as "ts12"; 0 without one.
std::uint64_t numberOf(std::string_view identifier)
{
  const std::size_t last = identifier.find_last_not_of("0123456789");
  const std::string_view digits = last == std::string_view::npos ? identifier : identifier.substr(last + 1);
  std::uint64_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  constexpr std::uint64_t greatest = 1'000'000'000'000'000;
  return result.ec == std::errc() && number < greatest ? number : 0;
}

/// A label in milliseconds.
struct Annotation
{
  Milliseconds from = 0;
  Milliseconds to = 0;
  const std::string* label = nullptr;
};

struct NewTier
{
  std::string name;
  std::string participant;
  std::string annotator;
  std::string type;
  std::vector<Annotation> annotations;  // by time, without overlap
};

/// Distributes the spans over tiers, of which none has labels that overlap.
std::vector<NewTier> tiersOf(const std::vector<LabelSpan>& spans, const char* type)
{
  using Key = std::tuple<std::string, std::string, std::string>;
  std::vector<Key> order;
  std::map<Key, std::vector<Annotation>> groups;
  for (const LabelSpan& span : spans)
  {
    const auto [group, isNew] = groups.try_emplace(Key(span.tier, span.person, span.coder));
    if (isNew)
      order.push_back(group->first);
    const Milliseconds from = millisecondsOf(span.from);
    group->second.push_back({from, std::max(from + 1, millisecondsOf(span.to)), &span.label});
  }

  std::vector<NewTier> tiers;
  for (const Key& key : order)
  {
    std::vector<Annotation>& annotations = groups.at(key);
    std::stable_sort(annotations.begin(), annotations.end(),
                     [](const Annotation& one, const Annotation& other) { return one.from < other.from; });
    const auto& [tier, person, coder] = key;
    std::multimap<Milliseconds, std::size_t> free;  // tiers of this key by the ends of their last labels
    for (const Annotation& annotation : annotations)
    {
      std::size_t index = tiers.size();
      if (!free.empty() && free.begin()->first <= annotation.from)
        index = free.extract(free.begin()).mapped();
      else
        tiers.push_back({tier.empty() ? (coder.empty() ? "labels" : coder) : tier, person, coder, type, {}});
      tiers[index].annotations.push_back(annotation);
      free.emplace(annotation.to, index);
    }
  }
  return tiers;
}

/// A document to which tiers are added.
class ElanEdit
{
public:
  explicit ElanEdit(const std::string& text)
  {
    throwIfOutOfMemory(_document.load_buffer(text.data(), text.size(), parsing, pugi::encoding_utf8));
    _root = _document.child("ANNOTATION_DOCUMENT");
    for (pugi::xml_node node : _document.children())
      if (node.type() == pugi::node_declaration && node.attribute("encoding"))
        setValue(node.attribute("encoding"), "UTF-8");
    _timeOrder = _root.child("TIME_ORDER");
    if (!_timeOrder)
      _timeOrder = _append("TIME_ORDER", {"LICENSE", "HEADER"});
    _removeOwnTiers();
    _findTaken();
  }

  void add(const std::vector<NewTier>& tiers)
  {
    for (const NewTier& tier : tiers)
      _add(tier);
  }

  void write(std::ostream& stream)
  {
    _addSlots();
    for (pugi::xml_node property : _root.child("HEADER").children("PROPERTY"))
      if (property.attribute("NAME").value() == std::string_view("lastUsedAnnotationId"))
        setValue(property.text(), std::to_string(_lastAnnotation));
    _document.save(stream, "    ", pugi::format_default, pugi::encoding_utf8);
  }

private:
  static bool _isOwn(const pugi::xml_node& tier)
  {
    return tier.attribute("LINGUISTIC_TYPE_REF").value() == std::string_view(ownType);
  }

  template <typename Take>
  static void _forEachSlotOf(const pugi::xml_node& tier, Take&& take)
  {
    for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
      for (const char* name : {"TIME_SLOT_REF1", "TIME_SLOT_REF2"})
        take(std::string(annotation.child("ALIGNABLE_ANNOTATION").attribute(name).value()));
  }

  /// Also removes the slots that nothing refers to any more.
  void _removeOwnTiers()
  {
    std::set<std::string> removed;
    std::set<std::string> needed;
    std::vector<pugi::xml_node> own;
    for (const pugi::xml_node tier : _root.children("TIER"))
    {
      std::set<std::string>& slots = _isOwn(tier) ? removed : needed;
      _forEachSlotOf(tier, [&slots](const std::string& slot) { slots.insert(slot); });
      if (_isOwn(tier))
        own.push_back(tier);
    }
    for (const pugi::xml_node& tier : own)
      _root.remove_child(tier);
    std::vector<pugi::xml_node> unused;
    for (const pugi::xml_node slot : _timeOrder.children("TIME_SLOT"))
    {
      const std::string name = slot.attribute("TIME_SLOT_ID").value();
      if (removed.count(name) != 0 && needed.count(name) == 0)
        unused.push_back(slot);
    }
    for (const pugi::xml_node& slot : unused)
      _timeOrder.remove_child(slot);
  }

  void _findTaken()
  {
    for (const pugi::xml_node slot : _timeOrder.children("TIME_SLOT"))
      _lastSlot = std::max(_lastSlot, numberOf(slot.attribute("TIME_SLOT_ID").value()));
    for (const pugi::xml_node tier : _root.children("TIER"))
    {
      _names.insert(tier.attribute("TIER_ID").value());
      for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
        for (const pugi::xml_node node : annotation.children())
          _lastAnnotation = std::max(_lastAnnotation, numberOf(node.attribute("ANNOTATION_ID").value()));
    }
    for (const pugi::xml_node type : _root.children("LINGUISTIC_TYPE"))
      _types.insert(type.attribute("LINGUISTIC_TYPE_ID").value());
    for (const pugi::xml_node property : _root.child("HEADER").children("PROPERTY"))
      if (property.attribute("NAME").value() == std::string_view("lastUsedAnnotationId"))
        _lastAnnotation = std::max(_lastAnnotation, numberOf(property.text().get()));
  }

  std::string _freeName(const std::string& wanted)
  {
    const std::string name = allowedText(wanted);
    std::string free = name;
    for (std::size_t& number = _counts[name]; !_names.insert(free).second;)
      free = name + " (" + std::to_string(++number + 1) + ")";
    return free;
  }

  /// Adds an element behind the last of that name or, without one, behind the last of the earlier names: a
  /// document has them in a fixed order.
  pugi::xml_node _append(const char* name, std::initializer_list<const char*> earlier)
  {
    pugi::xml_node last;
    for (const char* one : earlier)
      for (const pugi::xml_node node : _root.children(one))
        last = node;
    for (const pugi::xml_node node : _root.children(name))
      last = node;
    return added(last ? _root.insert_child_after(name, last) : _root.prepend_child(name));
  }

  void _add(const NewTier& tier)
  {
    pugi::xml_node node =
        _lastTier ? added(_root.insert_child_after("TIER", _lastTier)) : _append("TIER", {"TIME_ORDER"});
    _lastTier = node;
    setValue(node.append_attribute("LINGUISTIC_TYPE_REF"), tier.type);
    if (!tier.annotator.empty())
      setValue(node.append_attribute("ANNOTATOR"), allowedText(tier.annotator));
    if (!tier.participant.empty())
      setValue(node.append_attribute("PARTICIPANT"), allowedText(tier.participant));
    setValue(node.append_attribute("TIER_ID"), _freeName(tier.name));
    for (const Annotation& annotation : tier.annotations)
    {
      pugi::xml_node label = added(added(node.append_child("ANNOTATION")).append_child("ALIGNABLE_ANNOTATION"));
      setValue(label.append_attribute("ANNOTATION_ID"), "a" + std::to_string(++_lastAnnotation));
      setValue(label.append_attribute("TIME_SLOT_REF1"), _slotAt(annotation.from));
      setValue(label.append_attribute("TIME_SLOT_REF2"), _slotAt(annotation.to));
      setValue(added(label.append_child("ANNOTATION_VALUE")).text(), allowedText(*annotation.label));
    }
    if (_types.insert(tier.type).second)
    {
      pugi::xml_node type = _append("LINGUISTIC_TYPE", {"TIME_ORDER", "TIER"});
      setValue(type.append_attribute("GRAPHIC_REFERENCES"), "false");
      setValue(type.append_attribute("LINGUISTIC_TYPE_ID"), tier.type);
      setValue(type.append_attribute("TIME_ALIGNABLE"), "true");
    }
  }

  std::string _slotAt(Milliseconds time)
  {
    _slots.emplace_back(time, "ts" + std::to_string(++_lastSlot));
    return _slots.back().second;
  }

  /// Puts the new slots between those that there are, by time.
  void _addSlots()
  {
    std::stable_sort(_slots.begin(), _slots.end(),
                     [](const auto& one, const auto& other) { return one.first < other.first; });
    pugi::xml_node next = _timeOrder.child("TIME_SLOT");
    const auto isNotLater = [](const pugi::xml_node& slot, Milliseconds time) {
      const pugi::xml_attribute value = slot.attribute("TIME_VALUE");
      const std::optional<double> known = labelNumber(value.value());
      return !known || *known <= static_cast<double>(time);
    };
    for (const auto& [time, name] : _slots)
    {
      while (next && isNotLater(next, time))
        next = next.next_sibling("TIME_SLOT");
      pugi::xml_node slot =
          added(next ? _timeOrder.insert_child_before("TIME_SLOT", next) : _timeOrder.append_child("TIME_SLOT"));
      setValue(slot.append_attribute("TIME_SLOT_ID"), name);
      setValue(slot.append_attribute("TIME_VALUE"), std::to_string(time));
    }
  }

  pugi::xml_document _document;
  pugi::xml_node _root;
  pugi::xml_node _timeOrder;
  pugi::xml_node _lastTier;
  std::set<std::string> _names;                // of tiers
  std::map<std::string, std::size_t> _counts;  // how many names were derived from this one
  std::set<std::string> _types;
  std::uint64_t _lastSlot = 0;
  std::uint64_t _lastAnnotation = 0;
  std::vector<std::pair<Milliseconds, std::string>> _slots;  // new ones
};

}  // namespace

void refuseUnfitElan(const std::string& path, const std::string& text)
{
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size(), parsing, pugi::encoding_utf8);
  throwIfOutOfMemory(result);
  if (!result)
    throw Error({path, lineAt(text, static_cast<std::size_t>(result.offset)), {}},
                std::string("is damaged or cut: ") + result.description());
  if (!document.child("ANNOTATION_DOCUMENT"))
    throw Error({path, 0, {}}, "has no element ANNOTATION_DOCUMENT at its top");
  int depth = 0;
  for (pugi::xml_node node = document.first_child(); node;)
  {
    if (pugi::xml_node child = node.first_child())
    {
      if (++depth > limits::deepestXml)
        throw Error(
            {path, lineAt(text, static_cast<std::size_t>(std::max<std::ptrdiff_t>(child.offset_debug(), 0))), {}},
            "is nested more than " + std::to_string(limits::deepestXml) + " levels deep");
      node = child;
      continue;
    }
    while (node && !node.next_sibling())
    {
      node = node.parent();
      --depth;
    }
    node = node.next_sibling();
  }
}

void writeElan(std::ostream& stream, const std::string& kept, const std::vector<LabelSpan>& own,
               const std::vector<LabelSpan>& others)
{
  ElanEdit edit(kept.empty() ? newDocument : kept);
  edit.add(tiersOf(others, coderType));
  edit.add(tiersOf(own, ownType));
  edit.write(stream);
}

}  // namespace KV::recordings
