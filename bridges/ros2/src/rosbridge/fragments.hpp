#pragma once

#include "rosbridge/rosbridgeoperations.hpp"

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <list>
#include <map>
#include <string>

namespace KV::ros2
{

/// Puts texts together that rosbridge sent in fragments. The fragments of a text may come in any order, and among those
/// of other texts.
///
/// Not synchronised.
class Fragments
{
public:
  static constexpr std::size_t mostFragments = 10'000;  ///< of one text
  static constexpr std::size_t mostTexts = 10;          ///< that are not complete; of more, the oldest are left out
  static constexpr std::size_t longestId = 200;         ///< [bytes]

  /// \param longestText  [bytes] longer ones are left out
  explicit Fragments(std::size_t longestText) : _longestText(longestText) {}

  /// Takes a fragment. Returns its text if it is complete.
  ///
  /// \throws std::invalid_argument if a text is left out; the words say why. Of a text that is too long, the fragments
  ///   that follow are left out without an error.
  boost::optional<std::string> take(RosbridgeFragment fragment);

  /// Forgets the texts that are not complete: the connection is another one.
  void clear() { _texts.clear(); }

private:
  struct Text
  {
    std::string id;
    std::size_t total = 0;
    std::size_t taken = 0;                     // fragments
    std::size_t bytes = 0;                     // of those
    std::map<std::size_t, std::string> parts;  // by their numbers
    bool isTooLong = false;
  };
  using Texts = std::list<Text>;

  static boost::optional<std::string> _wholeOf(const Text& text);
  Texts::iterator _textOf(const RosbridgeFragment& fragment);
  void _addTo(Text& text, RosbridgeFragment fragment) const;

  std::size_t _longestText;
  Texts _texts;  // that are not complete; the oldest first
};

}  // namespace KV::ros2
