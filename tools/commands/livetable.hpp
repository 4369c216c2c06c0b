#pragma once

#include "commands/livesource.hpp"

#include <skeigiot/session/persontable.hpp>

namespace KV::tools
{

/// The persons of a live source in a table that fills the terminal, as `skeigiot watch` shows it.
class LiveTable
{
public:
  LiveTable() = default;
  LiveTable(const LiveTable&) = delete;
  LiveTable& operator=(const LiveTable&) = delete;

  /// Returns the functions that get the input of the source; they refer to this object.
  LiveListeners listeners();

  /// Shows the table until the user quits or the terminal is gone. The notes of the source are left to the caller:
  /// nothing else may write to the terminal meanwhile.
  ///
  /// \throws std::runtime_error if there is no terminal that can show a page.
  /// \throws Interrupted if a signal came that ends the program and an Interruption lives.
  void show(LiveSource& source);

private:
  session::PersonTable _table;
};

}  // namespace KV::tools
