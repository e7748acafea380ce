// What a document's archive holds, and the small files in it that tell about the others.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "documents/markup_listener.h"
#include "documents/reading_watch.h"
#include "documents/text_flow.h"

struct ZipIndex {
    std::set<std::string, std::less<>> names;
    std::map<std::string, std::string> plainNames;  // in small letters and without "..": the name
    std::map<std::string, std::string, std::less<>> contents;
    std::vector<std::string> cutFiles;  // names of those whose content is not whole: too large
    bool isEncrypted = false;
    bool isBroken = false;

    bool Has(std::string_view name) const { return names.contains(name); }
    std::string_view Content(std::string_view name) const;  // empty when there is none
    // The name in the archive that an address in one of its files means: relative to that file's
    // folder, with "%20", "./" and "..", in any case where none is written as it is. Empty when
    // there is no such file.
    std::string Find(std::string_view folder, std::string_view address) const;
};

ZipIndex ReadZipIndex(std::string_view bytes, const ReadingWatch& watch);

// The folder of a file in an archive, with its slash.
std::string FolderInZip(std::string_view name);

// A whole small XML file into the listener.
void ParseXml(std::string_view xml, MarkupListener& listener);

// One XML file of the archive into the listener, which fills the flow. A sentence when it cannot be
// read.
std::string ReadXmlEntry(std::string_view bytes, std::string_view name, MarkupListener& listener,
                         const TextFlow& flow, const ReadingWatch& watch);
