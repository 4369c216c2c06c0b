#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/bodylanguageease.hpp>

#include <boost/smart_ptr/shared_ptr.hpp>

#include <iosfwd>

namespace KV
{

struct BodyLanguageStatePrivate;
class PersonMemory;

/// The choices of BodyLanguageState::bodyLanguageState().
enum BodyLanguageDescription : int
{
  BodyLanguageEaseDescription = 0  ///< how much at ease the person looks
};

/// The body-language estimate of one person: the mean ease of the remembered head postures.
///
/// A handle: copies share the record.
class SKEIGIOT_API BodyLanguageState
{
public:
  /// Makes a record of its own with ease (0, 0).
  BodyLanguageState();

  /// Estimates the ease anew from the head postures in `memory`; without one it stays as it was.
  ///
  /// \par Thread safety
  ///   Takes the mutex of the head-posture memory while it forgets and counts; the sum and the result are not
  ///   synchronised. Update a person from one thread at a time.
  void update(const PersonMemory& memory);

  /// Returns the ease.
  ///
  /// \throws std::invalid_argument "This descriptor is not valid." for any other description.
  /// \par Thread safety
  ///   Not synchronised.
  BodyLanguageEase bodyLanguageState(BodyLanguageDescription description) const;

  boost::shared_ptr<BodyLanguageStatePrivate> _p;  ///< the shared record, for the library's own components
};

/// Writes the ease as its own output operator does.
SKEIGIOT_API std::ostream& operator<<(std::ostream& stream, const BodyLanguageState& state);

}  // namespace KV
