#include "csv/csvfields.hpp"

#if defined(__SSE2__) && defined(__x86_64__)
#include <emmintrin.h>
#endif

#include <algorithm>

namespace KV::recordings
{
namespace
{
bool isBlank(char character)
{
  return character == ' ' || character == '\t';
}

/// Writes fields one after the other, in the order of the commas after them.
class FieldWriter
{
public:
  FieldWriter(const char* begin, std::string_view* fields) : _begin(begin), _next(fields) {}

  void endAt(const char* comma)
  {
    const char* first = _begin;
    const char* last = comma;
    while (first != last && isBlank(*first))
      ++first;
    while (first != last && isBlank(*(last - 1)))
      --last;
    *_next++ = {first, static_cast<std::size_t>(last - first)};
    _begin = comma + 1;
  }

private:
  const char* _begin;  // of the next field
  std::string_view* _next;
};

void endAtCommas(const char* begin, const char* end, FieldWriter& fields)
{
  for (const char* comma = std::find(begin, end, ','); comma != end; comma = std::find(comma + 1, end, ','))
    fields.endAt(comma);
}

#if defined(__SSE2__) && defined(__x86_64__)

constexpr std::ptrdiff_t blockSize = sizeof(__m128i);

__m128i blockAt(const char* first)
{
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));  // NOLINT: the intrinsic wants that type
}

/// Returns -1 in each byte that holds the character, else 0.
__m128i whereIs(char character, __m128i block)
{
  return _mm_cmpeq_epi8(block, _mm_set1_epi8(character));
}

/// Returns a bit for each byte that is -1, the first in the lowest.
unsigned bitsOf(__m128i bytes)
{
  return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

/// Returns the sum of the bytes, which are without a sign.
std::size_t sumOf(__m128i bytes)
{
  const __m128i sums = _mm_sad_epu8(bytes, _mm_setzero_si128());
  return static_cast<std::size_t>(_mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums)));
}

#endif

}  // namespace

// Both loops compare each character alone: a field has a blank or two, and a search for a set of characters is slower.

void skipBlanks(std::string_view& text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
}

std::string_view withoutBlanks(std::string_view text)
{
  skipBlanks(text);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

LineScan scanLineByCharacter(std::string_view line)
{
  return {static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')),
          line.find('"') != std::string_view::npos};
}

void splitAtCommasByCharacter(std::string_view line, std::string_view* fields)
{
  const char* const end = line.data() + line.size();
  FieldWriter writer(line.data(), fields);
  endAtCommas(line.data(), end, writer);
  writer.endAt(end);
}

#if defined(__SSE2__) && defined(__x86_64__)

LineScan scanLine(std::string_view line)
{
  constexpr std::ptrdiff_t most = 255;  // blocks whose commas a byte can count
  const char* next = line.data();
  const char* const end = next + line.size();
  std::size_t commas = 0;
  while (end - next >= blockSize)
  {
    const char* const stop = next + std::min(most, (end - next) / blockSize) * blockSize;
    __m128i counts = _mm_setzero_si128();
    __m128i quotes = _mm_setzero_si128();
    for (; next != stop; next += blockSize)
    {
      const __m128i block = blockAt(next);
      counts = _mm_sub_epi8(counts, whereIs(',', block));
      quotes = _mm_or_si128(quotes, whereIs('"', block));
    }
    commas += sumOf(counts);
    if (bitsOf(quotes) != 0)
      return {commas, true};
  }
  const LineScan rest = scanLineByCharacter({next, static_cast<std::size_t>(end - next)});
  return {commas + rest.commas, rest.hasQuote};
}

void splitAtCommas(std::string_view line, std::string_view* fields)
{
  const char* next = line.data();
  const char* const end = next + line.size();
  FieldWriter writer(next, fields);
  for (; end - next >= blockSize; next += blockSize)
    for (unsigned commas = bitsOf(whereIs(',', blockAt(next))); commas != 0; commas &= commas - 1)
      writer.endAt(next + __builtin_ctz(commas));
  endAtCommas(next, end, writer);
  writer.endAt(end);
}

#else

LineScan scanLine(std::string_view line)
{
  return scanLineByCharacter(line);
}

void splitAtCommas(std::string_view line, std::string_view* fields)
{
  splitAtCommasByCharacter(line, fields);
}

#endif

}  // namespace KV::recordings
