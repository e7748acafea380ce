// The library that fetches web pages. What it brings along takes as long to load as all else of a
// program together, so it comes with the first page.
#pragma once

#include <curl/curl.h>

#include "foundation/processes/late_library.h"

struct CurlLibrary {
    // Loaded at the first call. Any thread.
    static const CurlLibrary& Get();

    // The second name is that of systems with another library for secure connections.
    LateLibrary library{"libcurl-gnutls.so.4", "libcurl.so.4"};

    decltype(&curl_global_init) globalInit = Find<decltype(curl_global_init)>("curl_global_init");
    decltype(&curl_free) free = Find<decltype(curl_free)>("curl_free");
    decltype(&curl_easy_init) easyInit = Find<decltype(curl_easy_init)>("curl_easy_init");
    decltype(&curl_easy_cleanup) easyCleanup =
        Find<decltype(curl_easy_cleanup)>("curl_easy_cleanup");
    decltype(&curl_easy_setopt) easySetopt = Find<decltype(curl_easy_setopt)>("curl_easy_setopt");
    decltype(&curl_easy_perform) easyPerform =
        Find<decltype(curl_easy_perform)>("curl_easy_perform");
    decltype(&curl_easy_getinfo) easyGetinfo =
        Find<decltype(curl_easy_getinfo)>("curl_easy_getinfo");
    decltype(&curl_easy_strerror) easyStrerror =
        Find<decltype(curl_easy_strerror)>("curl_easy_strerror");
    decltype(&curl_url) url = Find<decltype(curl_url)>("curl_url");
    decltype(&curl_url_cleanup) urlCleanup = Find<decltype(curl_url_cleanup)>("curl_url_cleanup");
    decltype(&curl_url_set) urlSet = Find<decltype(curl_url_set)>("curl_url_set");
    decltype(&curl_url_get) urlGet = Find<decltype(curl_url_get)>("curl_url_get");

    // Whole and begun; else no function may be called.
    bool isReady = library.IsWhole() && globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK;

private:
    CurlLibrary() = default;

    template <typename Function>
    Function* Find(const char* name) {
        return library.Find<Function>(name);
    }
};
