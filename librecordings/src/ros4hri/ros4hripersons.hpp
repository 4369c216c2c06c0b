#pragma once

#include <skeigiot/recordings/inputlimits.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Numbers the persons of a bag: first those with a name, in the order of their first messages, then faces that belong
/// to nobody, in the order in which they appear.
///
/// A person may be an alias of another one: both are one person then, with the name of the other. Of two numbers that
/// were in use, the person keeps that of the other; if only one was, that one. In the same way, a person whose face or
/// voice was that of an anonymous one keeps the number, unless the person was there before.
///
/// A live session lasts for days. Where its faces, voices or persons are too many, those that were used longest ago are
/// forgotten for new ones; of a bag, new ones are left out.
class RosbagPersons
{
public:
  /// There are no more faces, and no more voices; in a live session, no more persons with a name, either.
  static constexpr std::size_t mostFaces = limits::mostFaces;

  explicit RosbagPersons(bool isLive = false) : _isLive(isLive) {}

  /// Records that a face is that of a person; the last message about a face counts.
  void addFace(const std::string& person, const std::string& face) { _add(_faces, person, face); }

  /// As above, for a voice.
  void addVoice(const std::string& person, const std::string& voice) { _add(_voices, person, voice); }

  /// Records that a person is an alias of another one, or of nobody any more if that id is empty; the last message
  /// counts. More than 30 aliases in a row are ignored, and ids of more than 247 characters.
  void setAlias(const std::string& person, const std::string& other);

  /// Records whether the id of the person is only for as long as nobody knows who it is.
  void setAnonymous(const std::string& person, bool isAnonymous);

  /// Returns the number of the person with this face; nothing if there are too many faces in a bag.
  std::optional<std::int32_t> ofFace(const std::string& face);

  /// Returns the number of the person with this voice; nothing if it belongs to nobody.
  std::optional<std::int32_t> ofVoice(const std::string& voice);

  /// Returns the name of this person in the bag: the id of the person, or of the face that belongs to nobody. In
  /// UTF-8. Empty for a number that nobody has.
  std::string nameOf(std::int32_t person) const;

  /// Returns whether somebody has this number, or had it and is not forgotten.
  bool isKnown(std::int32_t person) const { return _all.count(person) > 0; }

  /// Forgets a face that belongs to nobody. One of a person with a name stays known, since that is said only once; it
  /// is forgotten, too, if more than half of the faces that are possible are known.
  void forgetFace(const std::string& face);

  /// Forgets the numbers that nobody has any more, except these.
  void forgetFormer(const std::set<std::int32_t>& kept);

  /// Gives a person who is forgotten elsewhere another number, for when the person comes back.
  void renumber(std::int32_t person);

  /// Says who has which number.
  std::string describe() const;

private:
  struct Person
  {
    std::int32_t number = 0;
    std::string name;       // in UTF-8
    bool isNamed = false;   // else it is a face that belongs to nobody
    std::uint64_t use = 0;  // greater is later
    bool isAnonymous = false;
    bool isUsed = false;           // the number is known outside
    std::shared_ptr<Person> real;  // of whom this one is an alias, if it is one
    int aliases = 0;               // in a row that ended here, at most
  };
  using PersonPointer = std::shared_ptr<Person>;

  struct Owned
  {
    PersonPointer person;
    std::uint64_t use = 0;  // as above
  };
  using OwnedById = std::map<std::string, Owned>;

  void _add(OwnedById& owned, const std::string& person, const std::string& id);
  bool _makeRoom(OwnedById& owned, const std::string& id);
  static PersonPointer _realOf(PersonPointer person);
  void _separate(const PersonPointer& alias);
  std::int32_t _numberOf(Owned& owned);
  void _use(Owned& owned);
  void _passNumber(const PersonPointer& from, const PersonPointer& to);
  void _lose(const PersonPointer& person);
  PersonPointer _make(const std::string& name, bool isNamed);
  PersonPointer _personOf(const std::string& person);
  bool _canBeKnown(const std::string& person) const;
  void _forgetOldestPerson();

  bool _isLive;
  std::map<std::int32_t, PersonPointer> _all;   // persons and faces without one, by number
  std::set<std::int32_t> _former;               // numbers in _all that nobody has any more
  std::map<std::string, PersonPointer> _named;  // persons with a name, by their ids
  OwnedById _faces;
  OwnedById _voices;
  std::int32_t _next = 0;
  std::uint64_t _uses = 0;
};

}  // namespace KV::recordings
