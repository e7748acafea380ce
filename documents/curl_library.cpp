#include "documents/curl_library.h"

const CurlLibrary& CurlLibrary::Get() {
    static const CurlLibrary library;
    return library;
}
