#include "documents/zip_document.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "documents/epub_book.h"
#include "documents/html_text.h"
#include "documents/markup_reader.h"
#include "documents/office_text.h"
#include "documents/problems.h"
#include "documents/text_flow.h"
#include "documents/zip_entries.h"

namespace {

constexpr std::size_t kMaxIndex = 8U << 20;  // a file that tells about others
constexpr std::size_t kMaxChapter = 32U << 20;

constexpr const char* kProtected = "The document is protected by a password or against copying.";

// What the archive's small files say about the rest.
struct Index {
    std::set<std::string, std::less<>> names;
    std::map<std::string, std::string, std::less<>> contents;  // of those that tell about others
    bool isEncrypted = false;
    bool isBroken = false;

    bool Has(std::string_view name) const { return names.contains(name); }
    std::string_view Content(std::string_view name) const {
        const auto found = contents.find(name);
        return found == contents.end() ? std::string_view() : std::string_view(found->second);
    }
};

Index ReadIndex(std::string_view bytes, const ReadingWatch& watch) {
    Index index;
    ZipEntries entries(bytes);
    while (!watch.IsToEnd() && entries.Next()) {
        const std::string& name = entries.Name();
        index.names.insert(name);
        index.isEncrypted = index.isEncrypted || entries.IsEncrypted();
        if (name.starts_with("META-INF/") || name.ends_with(".opf"))
            entries.ReadAll(kMaxIndex, index.contents[name]);
    }
    index.isBroken = entries.IsBroken();
    return index;
}

// One XML file of the archive into the listener. A sentence when it cannot be read.
std::string ReadXmlEntry(std::string_view bytes, std::string_view name, MarkupListener& listener,
                         const TextFlow& flow, const ReadingWatch& watch) {
    ZipEntries entries(bytes);
    while (entries.Next()) {
        if (entries.Name() != name)
            continue;
        MarkupReader reader(MarkupReader::Kind::kXml, listener);
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
        return entries.IsBroken() || !reader.Finish() ? kDamagedDocument : "";
    }
    return kDamagedDocument;
}

Document ReadOffice(std::string_view bytes, std::string_view name,
                    std::unique_ptr<MarkupListener> (*makeListener)(TextFlow& flow),
                    const ReadingWatch& watch) {
    TextFlow flow;
    const auto listener = makeListener(flow);
    std::string problem = ReadXmlEntry(bytes, name, *listener, flow, watch);
    if (!problem.empty())
        return {{}, std::move(problem)};
    return {flow.Take(), {}};
}

Document ReadBook(std::string_view bytes, const Index& index, const ReadingWatch& watch) {
    const std::string package = EpubPackageName(index.Content("META-INF/container.xml"));
    const std::vector<std::string> chapters = EpubChapters(package, index.Content(package));
    for (const std::string& name : EpubEncryptedFiles(index.Content("META-INF/encryption.xml")))
        if (std::find(chapters.begin(), chapters.end(), name) != chapters.end())
            return {{}, kProtected};
    // In the archive's order, so that it is unpacked once.
    std::map<std::string, std::string, std::less<>> texts;
    for (const std::string& name : chapters)
        texts.emplace(name, "");
    ZipEntries entries(bytes);
    std::size_t length = 0;
    while (entries.Next()) {
        const auto chapter = texts.find(entries.Name());
        if (watch.IsToEnd())
            return {{}, watch.Problem()};
        if (chapter == texts.end())
            continue;
        std::string page;
        TextFlow flow;
        if (!entries.ReadAll(kMaxChapter, page))
            return {{}, entries.IsBroken() ? kDamagedDocument : kTooLongDocument};
        if (std::string problem = ReadHtml(page, watch, flow); !problem.empty())
            return {{}, std::move(problem)};
        chapter->second = flow.Take();
        length += chapter->second.size();
        if (length > kLargestDocumentText)
            return {{}, kTooLongDocument};
    }
    if (entries.IsTooLarge())
        return {{}, kTooLongDocument};
    if (chapters.empty() || entries.IsBroken())
        return {{}, kDamagedDocument};
    std::string text;
    for (const std::string& name : chapters) {
        // A book that names a chapter twice has it once.
        const std::string chapter = std::move(texts[name]);
        texts[name].clear();
        if (!text.empty() && !chapter.empty())
            text += "\n\n";
        text += chapter;
    }
    return {std::move(text), {}};
}

std::string DocxMainPart(const Index& index) {
    for (auto name = index.names.lower_bound("word/document");
         name != index.names.end() && name->starts_with("word/document"); ++name)
        if (name->ends_with(".xml"))
            return *name;
    return {};
}

}  // namespace

Document ReadZipDocument(std::string_view bytes, const ReadingWatch& watch) {
    const Index index = ReadIndex(bytes, watch);
    if (watch.IsToEnd())
        return {{}, watch.Problem()};
    if (index.isEncrypted ||
        index.Content("META-INF/manifest.xml").find("encryption-data") != std::string_view::npos)
        return {{}, kProtected};
    if (index.Has("META-INF/container.xml"))
        return ReadBook(bytes, index, watch);
    if (const std::string name = DocxMainPart(index); !name.empty())
        return ReadOffice(bytes, name, MakeDocxListener, watch);
    if (index.Has("content.xml"))
        return ReadOffice(bytes, "content.xml", MakeOdtListener, watch);
    return {{},
            index.isBroken ? kDamagedDocument : "The archive holds no document that can be read."};
}
