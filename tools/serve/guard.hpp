#pragma once

#include <string>
#include <string_view>

namespace KV::tools
{

/// Returns 128 random bits as 32 hexadecimal digits.
std::string randomToken();

/// Returns whether the texts are the same, in a time that does not depend on where they differ.
bool isSameSecret(std::string_view left, std::string_view right);

/// Returns whether the text is an address as a number, or localhost.
bool isAddress(const std::string& text);

/// Returns whether the address is one that only this machine reaches: 127.0.0.1 and others of 127., ::1, localhost.
bool isLoopback(const std::string& address);

/// Returns whether a request with this header Host is meant for the server at this port.
///
/// Other pages can have a browser reach this machine under a name of theirs, but not under a number: so a Host is a
/// number or "localhost", with the port. Browsers leave out port 80, which is the usual one: so may a Host. A server
/// that only this machine reaches takes the numbers of its loopback only; others take any number, since a machine may
/// be reached by numbers that it does not know.
bool isOwnHost(const std::string& host, int port, bool onlyLoopback);

/// Returns whether a request with this header Origin comes from a page of the server with that Host.
bool isOwnOrigin(const std::string& origin, const std::string& host);

}  // namespace KV::tools
