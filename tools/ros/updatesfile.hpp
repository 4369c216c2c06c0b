#pragma once

#include <skeigiot/session/exports.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <string>

namespace KV::tools
{

/// Exports the updates of a node as JSON Lines until that fails: the node can then end in order.
class UpdatesFile : public session::SessionObserver
{
public:
  /// Makes the file; it comes to its place with complete().
  ///
  /// \param session   name in the lines
  /// \param replaces  an existing file is replaced; without it, a file that is there is refused
  /// \throws OutputRefused if the file is refused.
  /// \throws WriteError if the file cannot be made.
  UpdatesFile(const std::string& path, const std::string& session, bool replaces);

  void personUpdated(const session::Snapshot& snapshot) override;

  /// Puts the file into its place.
  ///
  /// \throws WriteError if that fails.
  void complete();

  /// Returns why no update is written any more; empty as long as all is well.
  const std::string& error() const { return _error; }

private:
  session::Exports _exports;
  std::string _error;
};

}  // namespace KV::tools
