#include "documents/zip_index.h"

#include <glib.h>

#include <algorithm>
#include <vector>

#include "documents/problems.h"
#include "documents/xml_reader.h"
#include "documents/zip_entries.h"
#include "foundation/owned_text.h"

namespace {

constexpr std::size_t kMaxSmallFile = 16U << 20;
constexpr std::size_t kMaxSmallFiles = 64U << 20;  // all of them, which are in memory at once

bool TellsAboutOthers(std::string_view name) {
    for (const std::string_view beginning :
         {"META-INF/", "docProps/", "word/_rels/", "ppt/_rels/", "ppt/slides/_rels/",
          "word/charts/chart", "word/diagrams/data", "ppt/charts/chart", "ppt/diagrams/data"})
        if (name.starts_with(beginning))
            return true;
    for (const std::string_view ending : {".opf", ".ncx", "/content.xml"})
        if (name.ends_with(ending))
            return true;
    // Whole files that stand in a document.
    for (const std::string_view ending : {".htm", ".html", ".xhtml", ".txt"})
        if (name.starts_with("word/") && name.ends_with(ending))
            return true;
    for (const std::string_view known :
         {"word/styles.xml", "word/numbering.xml", "word/footnotes.xml", "word/endnotes.xml",
          "ppt/presentation.xml", "styles.xml", "meta.xml", "mimetype"})
        if (name == known)
            return true;
    return false;
}

// "a/./b/../c" gives "a/c"; what leads out of the archive leads to its root.
std::string WithoutDots(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part == ".." && !parts.empty())
            parts.pop_back();
        else if (!part.empty() && part != "." && part != "..")
            parts.push_back(part);
    }
    std::string plain;
    for (const std::string_view part : parts)
        plain += (plain.empty() ? "" : "/") + std::string(part);
    return plain;
}

std::string Folded(std::string_view name) {
    if (g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) == 0)
        return std::string(name);
    // Some packers write a letter and its accent as two characters, some as one.
    const OwnedText composed(g_utf8_normalize(name.data(), static_cast<gssize>(name.size()),
                                              G_NORMALIZE_DEFAULT_COMPOSE));
    const OwnedText folded(composed ? g_utf8_casefold(composed.get(), -1) : nullptr);
    return folded ? std::string(folded.get()) : std::string(name);
}

}  // namespace

std::string_view ZipIndex::Content(std::string_view name) const {
    const auto found = contents.find(name);
    return found == contents.end() ? std::string_view() : std::string_view(found->second);
}

std::string ZipIndex::Find(std::string_view folder, std::string_view address) const {
    address = address.substr(0, address.find('#'));
    const OwnedText unescaped(
        g_uri_unescape_segment(address.data(), address.data() + address.size(), nullptr));
    for (const std::string_view written :
         {unescaped ? std::string_view(unescaped.get()) : address, address}) {
        std::string name =
            WithoutDots(written.starts_with('/') ? std::string(written)
                                                 : std::string(folder) + std::string(written));
        if (Has(name))
            return name;
        if (const auto found = plainNames.find(Folded(name)); found != plainNames.end())
            return found->second;
    }
    return {};
}

ZipIndex ReadZipIndex(std::string_view bytes, const ReadingWatch& watch) {
    ZipIndex index;
    ZipEntries entries(bytes);
    std::size_t room = kMaxSmallFiles;
    while (!watch.IsToEnd() && entries.Next()) {
        const std::string& name = entries.Name();
        index.names.insert(name);
        index.plainNames.emplace(Folded(WithoutDots(name)), name);
        index.isEncrypted = index.isEncrypted || entries.IsEncrypted();
        if (!TellsAboutOthers(name))
            continue;
        std::string& content = index.contents[name];
        room += content.size();  // of one of the same name, whose place it takes
        const bool isWhole = entries.ReadAll(std::min(room, kMaxSmallFile), content);
        if (!isWhole && !entries.IsEntryBroken())
            index.cutFiles.push_back(name);
        room -= content.size();
    }
    index.isBroken = entries.IsBroken();
    return index;
}

std::string FolderInZip(std::string_view name) {
    return std::string(name.substr(0, name.rfind('/') + 1));
}

void ParseXml(std::string_view xml, MarkupListener& listener) {
    XmlReader reader(listener);
    if (reader.Feed(xml))
        reader.Finish();
}

std::string ReadXmlEntry(std::string_view bytes, std::string_view name, MarkupListener& listener,
                         const TextFlow& flow, const ReadingWatch& watch) {
    ZipEntries entries(bytes);
    while (entries.Next()) {
        if (entries.Name() != name)
            continue;
        XmlReader reader(listener);
        for (std::string_view block; entries.ReadBlock(block);) {
            if (watch.IsToEnd())
                return watch.Problem();
            if (flow.IsTooLong())
                return kTooLongDocument;
            if (!reader.Feed(block))
                return kDamagedDocument;
        }
        if (entries.IsTooLarge())
            return kTooLongDocument;
        // A wrong checksum does not matter where the text is whole.
        return reader.Finish() ? "" : kDamagedDocument;
    }
    return kDamagedDocument;
}
