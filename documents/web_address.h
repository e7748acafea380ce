// Addresses of web pages, and which of them lie inside this computer or network.
#pragma once

#include <sys/socket.h>

#include <string>
#include <string_view>

// Whether all of a text, white space around it aside, is one "http:" or "https:" address.
bool IsWebAddress(std::string_view text);

// Whether an address is not one of the public internet: this computer, private networks, a link's
// or a multicast group's, or of a family that is not known.
bool IsLocalAddress(const sockaddr& address);
