#include "app/books/book_text.h"

#include <errno.h>
#include <glib.h>

#include <algorithm>

#include "app/settings_keys.h"
#include "app/text/kept_text.h"
#include "foundation/files/private_file.h"
#include "foundation/leading_number.h"
#include "foundation/owned_text.h"

namespace {

constexpr std::size_t kLargest = 512U << 20;  // more than a document may have

// By its content: what was changed in it, or is not whole, is not what was stored.
std::string FileNameOf(const std::string& content) {
    const OwnedText sum(g_compute_checksum_for_data(
        G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(content.data()), content.size()));
    return kBookTextPrefix + std::string(sum.get()) + ".txt";
}

}  // namespace

BookEntry EntryOfText(const std::string& text, const KeptStructure& structure,
                      const Document& original, const std::string& name) {
    Document edited;
    edited.text = text;
    edited.title = original.title;
    edited.author = original.author;
    edited.cover = original.cover;
    edited.languages = structure.languages;
    for (const OutlineEntry& entry : structure.outline) {
        const std::size_t end = std::min(text.find('\n', entry.begin), text.size());
        if (entry.begin < end)
            edited.headings.push_back({entry.begin, end, entry.depth + 1});
        if (entry.begin < end && entry.isChapter)
            edited.chapters.push_back({entry.begin, entry.title});
    }
    BookEntry entry = EntryOf(edited, "", name);
    entry.structure = LinesOfStructure(structure);
    return entry;
}

// A line with the bytes of structure and text, then these, then the cover.
int StoreBookText(BookEntry& entry) {
    if (!kKeepTextSetting.Get())
        return 0;
    const std::string content = std::to_string(entry.structure.size()) + ' ' +
                                std::to_string(entry.text.size()) + '\n' + entry.structure +
                                entry.text + entry.documentsCover;
    const std::string file = FileNameOf(content);
    const int error = content.size() > kLargest ? EFBIG : WritePrivateFile(file.c_str(), content);
    if (error == 0)
        entry.keptAs = file;
    return error;
}

std::optional<BookEntry> LoadBookText(const std::string& file, const std::string& name) {
    std::string content;
    if (!ReadPrivateFile(file.c_str(), kLargest, content) || FileNameOf(content) != file)
        return std::nullopt;
    std::string_view rest = content;
    std::size_t structureSize = 0;
    std::size_t textSize = 0;
    TakeLeadingNumber(rest, structureSize);
    TakeLeadingNumber(rest, textSize);
    rest.remove_prefix(std::min<std::size_t>(rest.size(), 1));
    const auto take = [&rest](std::size_t size) {
        std::string taken(rest.substr(0, size));
        rest.remove_prefix(taken.size());
        return taken;
    };
    const std::string lines = take(structureSize);
    const std::string text = take(textSize);
    Document original;
    original.cover = rest;
    BookEntry entry = EntryOfText(text, StructureOfLines(lines, text.size()), original, name);
    entry.keptAs = file;
    return entry;
}

bool IsBookText(std::string_view file) {
    return file.starts_with(kBookTextPrefix);
}
