#include "documents/xml_text.h"

#include "documents/problems.h"
#include "documents/small_texts.h"
#include "documents/xml_reader.h"

std::string ReadXml(std::string_view bytes, MarkupListener& listener, const TextFlow& flow,
                    const ReadingWatch& watch) {
    XmlReader reader(listener);
    for (std::size_t at = 0; at < bytes.size(); at += kReadAtOnce) {
        if (watch.IsToEnd())
            return watch.Problem();
        if (flow.IsTooLong())
            return kTooLongDocument;
        if (!reader.Feed(bytes.substr(at, kReadAtOnce)))
            return kDamagedDocument;
    }
    return reader.Finish() ? "" : kDamagedDocument;
}
