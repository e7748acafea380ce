// Fetches a web page by its address.
#pragma once

#include <chrono>
#include <string>

#include "documents/document.h"

struct WebBounds {
    std::chrono::milliseconds time{60000};
    std::chrono::milliseconds connecting{15000};  // of each connection
    std::size_t bytes = 64U << 20;
};

struct WebPage {
    std::string bytes;
    std::string name;     // the last part of its address, with an ending that fits its type
    std::string problem;  // why it is not whole, in a sentence that names the site
};

// Over HTTP and HTTPS alone, with the certificates that this computer trusts; sends no cookies and
// no passwords but those in the address, and uses no proxy. What a page leads on to is followed
// some steps: never into this computer or network, unless on the machine that the address itself
// names, and never from a secure page to an open one. Any thread.
WebPage FetchWebPage(const std::string& address, const StopTest& isToStop,
                     const WebBounds& bounds = {});
