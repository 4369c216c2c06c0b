#include <skeigiot/recordings/labelwriter.hpp>

#include "labels/elanwriting.hpp"
#include "labels/labeltext.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr const char* elan = "elan";
constexpr const char* audacity = "audacity";

std::string secondsText(double seconds)
{
  constexpr int digits = 6;  // as Audacity writes them
  std::array<char, 512> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed, digits);
  return {text.data(), result.ptr};
}

void appendAudacity(std::string& text, const LabelSpan& span)
{
  std::string label = span.tier + (span.tier.empty() || span.label.empty() ? "" : ": ") + span.label;
  for (char& character : label)
    character = static_cast<unsigned char>(character) < 0x20U ? ' ' : character;
  text += secondsText(span.from) + '\t' + secondsText(span.to) + '\t' + label + '\n';
}

}  // namespace

LabelWriter::LabelWriter(const std::string& format) : _format(format)
{
  if (format != elan && format != audacity)
    throw std::invalid_argument("labels are not written as " + quote(format) + ": expected elan or audacity");
}

void LabelWriter::keep(const std::string& path)
{
  Labels labels = readLabels(path);
  _kept.clear();
  _others.clear();
  if (labels.format != _format)
  {
    _others = std::move(labels.spans);
    return;
  }
  _kept = labelText(path);
  if (_format == elan)
    refuseUnfitElan(path, _kept);
}

void LabelWriter::write(std::ostream& stream, const std::vector<LabelSpan>& spans) const
{
  if (_format == elan)
  {
    writeElan(stream, _kept, spans, _others);
    return;
  }
  stream << _kept << (_kept.empty() || _kept.back() == '\n' ? "" : "\n");
  std::vector<LabelSpan> all = _others;
  all.insert(all.end(), spans.begin(), spans.end());
  std::stable_sort(all.begin(), all.end(),
                   [](const LabelSpan& one, const LabelSpan& other) { return one.from < other.from; });
  std::string text;
  for (const LabelSpan& span : all)
    appendAudacity(text, span);
  stream << text;
}

}  // namespace KV::recordings
