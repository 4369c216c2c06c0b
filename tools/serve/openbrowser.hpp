#pragma once

#include <string>

namespace KV::tools
{

/// Returns whether the program runs on a desktop, where a browser can be opened.
bool hasDesktop();

/// Opens a page in the browser of the desktop, which may take a while; it is not waited for.
///
/// The address holds a secret, which other users of the machine could read on a command line: so the browser is given a
/// file that leads there, which only this user can read. The file is gone with the object.
class OpenedBrowser
{
public:
  explicit OpenedBrowser(const std::string& address);
  ~OpenedBrowser();
  OpenedBrowser(const OpenedBrowser&) = delete;
  OpenedBrowser& operator=(const OpenedBrowser&) = delete;

private:
  std::string _file;
};

}  // namespace KV::tools
