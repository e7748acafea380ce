// XML as a stream of elements and texts. Entities of the document's own are never expanded, nothing
// is loaded from elsewhere, no tree is built.
#pragma once

#include <memory>
#include <string_view>

#include "documents/markup_listener.h"

class XmlReader {
public:
    // Reads in the charset that the document names. The listener must outlive this.
    explicit XmlReader(MarkupListener& listener);
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    // The next bytes; false when they cannot be what they should, or are filled with attributes
    // only to take time.
    bool Feed(std::string_view bytes);
    // After the last; false when something is missing.
    bool Finish();

private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};
