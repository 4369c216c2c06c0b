#include "cborcheck.hpp"

#include <limits>

namespace ko
{

namespace
{

enum MajorType : std::uint8_t
{
  UnsignedInteger,
  NegativeInteger,
  ByteString,
  TextString,
  Array,
  Map,
  Tag,
  SimpleOrFloat
};

/// The head of an item: its type and its argument, which is a value, a length, a count or a tag.
struct Head
{
  MajorType type;
  bool isIndefinite;  ///< an item of indefinite length, or the break that ends one; the argument is 0
  std::uint64_t argument;
  std::size_t size;  ///< in bytes
};

bool isString(const Head& head)
{
  return head.type == ByteString || head.type == TextString;
}

bool isBreak(const Head& head)
{
  return head.type == SimpleOrFloat && head.isIndefinite;
}

/// Returns the head at `offset`, or nothing if it is cut off or malformed, which the parser reports itself.
std::optional<Head> headAt(const std::vector<std::uint8_t>& bytes, std::size_t offset)
{
  constexpr unsigned oneByteArgument = 24;
  constexpr unsigned eightByteArgument = 27;
  constexpr unsigned indefinite = 31;

  const auto type = static_cast<MajorType>(bytes[offset] >> 5U);
  const unsigned info = bytes[offset] & 0x1FU;
  if (info < oneByteArgument)
    return Head{type, false, info, 1};
  if (info == indefinite)
    return Head{type, true, 0, 1};
  const std::size_t length = std::size_t{1} << (info - oneByteArgument);
  if (info > eightByteArgument || bytes.size() - offset - 1 < length)
    return std::nullopt;
  std::uint64_t argument = 0;
  for (std::size_t i = 1; i <= length; ++i)
    argument = argument << 8U | bytes[offset + i];
  return Head{type, false, argument, 1 + length};
}

/// Returns what is wrong with an item, if anything is; `rest` bytes follow its head.
std::optional<std::string> faultOf(const Head& head, std::size_t rest)
{
  if (head.isIndefinite)
    return std::nullopt;
  const bool hasLength = isString(head) || head.type == Array || head.type == Map;
  if (hasLength && head.argument > rest)  // every element takes at least one byte
    return "a length of " + std::to_string(head.argument) + ", but only " + std::to_string(rest) + " bytes follow";
  if (head.type == NegativeInteger &&
      head.argument > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return "an integer below the range of 64 bits";
  return std::nullopt;
}

}  // namespace

std::optional<CborFault> findCborFault(const std::vector<std::uint8_t>& bytes)
{
  std::optional<MajorType> chunksOf;  // the type of the string of indefinite length in which the scan is
  std::size_t offset = 0;
  while (offset < bytes.size())
  {
    const std::optional<Head> head = headAt(bytes, offset);
    if (!head)
      return std::nullopt;
    if (chunksOf && !isBreak(*head) && (head->type != *chunksOf || head->isIndefinite))
      return CborFault{offset, "a chunk of a string is not a string of definite length"};
    if (const std::optional<std::string> fault = faultOf(*head, bytes.size() - offset - head->size))
      return CborFault{offset, *fault};

    if (isString(*head) && head->isIndefinite)
      chunksOf = head->type;
    else if (isBreak(*head))
      chunksOf.reset();
    offset += head->size + (isString(*head) ? static_cast<std::size_t>(head->argument) : 0);
  }
  return std::nullopt;
}

}  // namespace ko
