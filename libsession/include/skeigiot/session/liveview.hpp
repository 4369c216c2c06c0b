#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/liveinput.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace KV::session
{

/// Writes what happens in a live session as JSON texts, for a page that shows it.
///
/// Memory is bounded, and so is each text: see mostPersons, mostKept. docs/live-page.md lists the members.
///
/// \par Thread safety
///   Not synchronised.
class SKEIGIOT_API LiveView : public SessionObserver
{
public:
  static constexpr std::size_t mostPersons = 64;  ///< so many persons are shown; others are counted until one leaves
  static constexpr std::size_t mostKept = 50;     ///< so many verdicts and warnings are kept for pages that come later

  /// Begins to watch. The values that the boundaries have now are those to which they can be put back.
  LiveView();
  ~LiveView() override;

  bool watchesForces() const override { return true; }
  void stepBegins(const recordings::Step& step) override;
  void forceActed(const KV::Force& force) override;
  void personUpdated(const Snapshot& snapshot) override;
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override;
  void scopeJudged(const ScopeVerdict& verdict) override;

  /// Says that the person left.
  void remove(std::int32_t person);

  /// Adds a warning.
  void warn(const std::string& warning);

  /// Says that boundaries were set: the next news have their values.
  void boundariesChanged();

  /// Gives all boundaries of the library the values that they had when the view was made.
  void putBoundariesBack();

  /// Returns whether takeNews() has something to say besides the time.
  bool hasNews() const;

  /// Returns what happened since the last call. Of a person with several updates, it has the last one and their
  /// count.
  ///
  /// Persons who were not seen for a minute leave.
  ///
  /// \param now   what the clock of the session shows
  /// \param input state of the input; null: it is left out this time
  std::string takeNews(TimePoint now, const LiveInput* input);

  /// Returns what a page needs to know before the news: names, boundaries, open scopes, verdicts and warnings so far.
  std::string facts() const;

private:
  struct Record;

  std::unique_ptr<Record> _record;
};

}  // namespace KV::session
