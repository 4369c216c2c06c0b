#include "labels/elanlabels.hpp"

#include "input/xmlmemory.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <pugixml.hpp>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
constexpr double secondsOfMillisecond = 1e-3;
constexpr std::size_t headLength = 4096;

/// A document of ELAN. Annotations refer to slots of time or to other annotations, which may come later.
class ElanDocument
{
public:
  ElanDocument(const std::string& path, const std::string& text) : _path(path), _text(text)
  {
    const pugi::xml_parse_result result =
        _document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    throwIfOutOfMemory(result);
    if (!result)
      throw Error({path, lineAt(text, static_cast<std::size_t>(result.offset)), {}},
                  std::string("is damaged or cut: ") + result.description());
    _root = _document.child("ANNOTATION_DOCUMENT");
  }

  Labels read()
  {
    const std::string units = _root.child("HEADER").attribute("TIME_UNITS").as_string("milliseconds");
    if (units != "milliseconds")
      throw Error(_place(_root.child("HEADER"), "TIME_UNITS"), "expected milliseconds, found " + quote(units));
    _readSlots();
    for (const pugi::xml_node tier : _root.children("TIER"))
      _readAlignable(tier);
    for (const pugi::xml_node tier : _root.children("TIER"))
      _collectReferring(tier);
    for (const pugi::xml_node tier : _root.children("TIER"))
      _addTier(tier);
    return std::move(_labels);
  }

private:
  struct Slot
  {
    std::size_t order = 0;
    std::optional<double> time;  // [s]
  };

  struct Span
  {
    double from = 0.;
    double to = 0.;
  };

  /// An annotation that takes a part of the time of another.
  struct Referring
  {
    std::string parent;
    std::size_t index = 0;
    std::size_t of = 0;  // the number of its tier's annotations with the same parent; counted when all are known
    pugi::xml_node node;
    bool isVisited = false;
  };

  Error::Place _place(const pugi::xml_node& node, const std::string& field) const
  {
    const std::ptrdiff_t offset = node.offset_debug();
    return {_path, offset < 0 ? 0 : lineAt(_text, static_cast<std::size_t>(offset)), field};
  }

  std::string _required(const pugi::xml_node& node, const char* attribute) const
  {
    std::string value = node.attribute(attribute).value();
    if (value.empty())
      throw Error(_place(node, attribute), "is missing");
    return value;
  }

  void _readSlots()
  {
    for (const pugi::xml_node node : _root.child("TIME_ORDER").children("TIME_SLOT"))
    {
      Slot slot;
      slot.order = _order.size();
      const pugi::xml_attribute value = node.attribute("TIME_VALUE");
      const std::optional<double> milliseconds = labelNumber(value.value());
      if (value && !milliseconds)
        throw Error(_place(node, "TIME_VALUE"), "expected a number, found " + quote(value.value()));
      if (milliseconds)
        slot.time = secondsOfMillisecond * *milliseconds;
      const auto [found, isNew] = _slots.emplace(_required(node, "TIME_SLOT_ID"), slot);
      if (!isNew)
        throw Error(_place(node, "TIME_SLOT_ID"), quote(found->first) + " is there twice");
      _order.push_back(slot.time);
    }
  }

  const Slot& _slot(const pugi::xml_node& node, const char* attribute) const
  {
    const std::string name = _required(node, attribute);
    const auto found = _slots.find(name);
    if (found == _slots.end())
      throw Error(_place(node, attribute), "there is no time slot " + quote(name));
    return found->second;
  }

  /// Consecutive annotations share slots. Slots without a time are spread evenly between two known times.
  void _readAlignable(const pugi::xml_node& tier)
  {
    std::vector<std::pair<pugi::xml_node, std::pair<const Slot*, const Slot*>>> annotations;
    std::unordered_map<const Slot*, const Slot*> following;
    std::unordered_map<const Slot*, const Slot*> preceding;
    for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
    {
      const pugi::xml_node node = annotation.child("ALIGNABLE_ANNOTATION");
      if (!node)
        continue;
      const Slot& from = _slot(node, "TIME_SLOT_REF1");
      const Slot& to = _slot(node, "TIME_SLOT_REF2");
      annotations.push_back({node, {&from, &to}});
      following.emplace(&from, &to);
      preceding.emplace(&to, &from);
    }
    std::unordered_map<const Slot*, double> spread;
    for (const auto& [node, slots] : annotations)
    {
      const Span span{_time(node, slots.first, following, preceding, spread),
                      _time(node, slots.second, following, preceding, spread)};
      if (span.to < span.from)
        throw Error(_place(node, "TIME_SLOT_REF2"), "the annotation ends before it begins");
      _spans.emplace(_required(node, "ANNOTATION_ID"), span);
    }
  }

  using Neighbours = std::unordered_map<const Slot*, const Slot*>;

  double _time(const pugi::xml_node& node, const Slot* slot, const Neighbours& following, const Neighbours& preceding,
               std::unordered_map<const Slot*, double>& spread) const
  {
    if (slot->time)
      return *slot->time;
    const auto known = spread.find(slot);
    if (known != spread.end())
      return known->second;
    const std::vector<const Slot*> before = _chain(slot, preceding);
    const std::vector<const Slot*> after = _chain(slot, following);
    if (!before.back()->time || !after.back()->time)
      return _timeByOrder(node, *slot);
    // before: from the slot back to one with a time; after: from the slot on to one with a time
    const double from = *before.back()->time;
    const double step = (*after.back()->time - from) / static_cast<double>(before.size() + after.size() - 2);
    for (std::size_t i = 0; i + 1 < before.size(); ++i)
      spread[before[i]] = from + step * static_cast<double>(before.size() - 1 - i);
    for (std::size_t i = 0; i + 1 < after.size(); ++i)
      spread[after[i]] = from + step * static_cast<double>(before.size() - 1 + i);
    return spread.at(slot);
  }

  std::vector<const Slot*> _chain(const Slot* slot, const Neighbours& neighbours) const
  {
    std::vector<const Slot*> chain{slot};
    while (!chain.back()->time && chain.size() <= _slots.size())
    {
      const auto next = neighbours.find(chain.back());
      if (next == neighbours.end())
        break;
      chain.push_back(next->second);
    }
    return chain;
  }

  /// Slots are listed by time: spreads those without a time evenly between the nearest two with a time.
  double _timeByOrder(const pugi::xml_node& node, const Slot& slot) const
  {
    std::size_t before = slot.order;
    while (before > 0 && !_order[before])
      --before;
    std::size_t after = slot.order;
    while (after + 1 < _order.size() && !_order[after])
      ++after;
    if (!_order[before] || !_order[after])
      throw Error(_place(node, "TIME_SLOT"), "has no time, and no slot with a time before and after it");
    const double share = static_cast<double>(slot.order - before) / static_cast<double>(after - before);
    return *_order[before] + share * (*_order[after] - *_order[before]);
  }

  void _collectReferring(const pugi::xml_node& tier)
  {
    std::map<std::string, std::size_t> counts;
    std::vector<std::string> names;
    for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
    {
      const pugi::xml_node node = annotation.child("REF_ANNOTATION");
      if (!node)
        continue;
      Referring referring;
      referring.parent = _required(node, "ANNOTATION_REF");
      referring.index = counts[referring.parent]++;
      referring.node = node;
      names.push_back(_required(node, "ANNOTATION_ID"));
      _referring.emplace(names.back(), referring);
    }
    for (const std::string& name : names)
    {
      Referring& referring = _referring.at(name);
      referring.of = counts[referring.parent];
    }
  }

  /// Follows references without recursion: a file may have a chain of any length.
  Span _spanOf(const std::string& name)
  {
    std::vector<std::string> chain;
    std::string at = name;
    while (_spans.count(at) == 0)
    {
      const auto found = _referring.find(at);
      if (found == _referring.end())
        throw Error(_place(_referring.at(chain.back()).node, "ANNOTATION_REF"), "there is no annotation " + quote(at));
      if (std::exchange(found->second.isVisited, true))
        throw Error(_place(found->second.node, "ANNOTATION_REF"), "annotations refer to each other in a circle");
      chain.push_back(at);
      at = found->second.parent;
    }
    for (auto child = chain.rbegin(); child != chain.rend(); ++child)
    {
      const Referring& referring = _referring.at(*child);
      const Span parent = _spans.at(referring.parent);
      const double step = (parent.to - parent.from) / static_cast<double>(referring.of);
      const double from = parent.from + step * static_cast<double>(referring.index);
      const bool isLast = referring.index + 1 == referring.of;
      _spans.emplace(*child, Span{from, isLast ? parent.to : from + step});
    }
    return _spans.at(name);
  }

  void _addTier(const pugi::xml_node& tier)
  {
    for (const pugi::xml_node annotation : tier.children("ANNOTATION"))
    {
      const pugi::xml_node node = annotation.first_child();
      const std::string_view label = trimmedLabel(node.child("ANNOTATION_VALUE").text().get());
      if (label.empty())
        continue;
      const Span span = _spanOf(_required(node, "ANNOTATION_ID"));
      LabelSpan added;
      added.from = span.from;
      added.to = span.to;
      added.label = label;
      added.person = trimmedLabel(tier.attribute("PARTICIPANT").value());
      added.coder = trimmedLabel(tier.attribute("ANNOTATOR").value());
      added.tier = tier.attribute("TIER_ID").value();
      _labels.spans.push_back(std::move(added));
    }
  }

  const std::string& _path;
  const std::string& _text;
  pugi::xml_document _document;
  pugi::xml_node _root;
  std::unordered_map<std::string, Slot> _slots;
  std::vector<std::optional<double>> _order;  // times of the slots as they are listed
  std::unordered_map<std::string, Span> _spans;
  std::unordered_map<std::string, Referring> _referring;
  Labels _labels;
};

}  // namespace

bool isElanLabels(std::string_view text)
{
  return text.substr(0, headLength).find("<ANNOTATION_DOCUMENT") != std::string_view::npos;
}

Labels readElanLabels(const std::string& path, const std::string& text)
{
  return ElanDocument(path, text).read();
}

}  // namespace KV::recordings
