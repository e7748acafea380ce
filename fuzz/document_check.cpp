#include "fuzz/document_check.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>

#include "documents/document_outline.h"

namespace {

void Must(bool isTrue) {
    if (!isTrue)
        std::abort();
}

std::string Little(std::uint32_t number, int size) {
    std::string bytes;
    for (; size > 0; --size, number >>= 8)
        bytes += static_cast<char>(number & 0xFF);
    return bytes;
}

std::uint32_t Checksum(std::string_view bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (0xEDB88320 & (0 - (sum & 1)));
    }
    return ~sum;
}

}  // namespace

void MustBeText(std::string_view text) {
    Must(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE);
}

void MustBeSound(const Document& document) {
    const std::string& text = document.text;
    MustBeText(text);
    MustBeText(document.problem);
    MustBeText(document.remark);
    Must(document.problem.empty() || text.empty());
    const auto isPlace = [&text](std::size_t at) {
        return at == text.size() ||
               (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U);
    };
    std::size_t before = 0;
    for (const DocumentHeading& heading : document.headings) {
        Must(heading.begin >= before && heading.begin <= heading.end && isPlace(heading.begin) &&
             isPlace(heading.end));
        before = heading.begin;
    }
    before = 0;
    for (const std::size_t page : document.pages) {
        Must(page >= before && isPlace(page));
        before = page;
    }
    before = 0;
    for (const DocumentChapter& chapter : document.chapters) {
        Must(chapter.begin >= before && isPlace(chapter.begin));
        before = chapter.begin;
    }
    before = 0;
    for (const DocumentLanguage& language : document.languages) {
        Must(language.begin >= before && isPlace(language.begin));
        before = language.begin;
    }
    before = 0;
    for (const OutlineEntry& entry : OutlineOf(document)) {
        MustBeText(entry.title);
        Must(!entry.title.empty() && entry.begin >= before && entry.depth >= 0 &&
             entry.depth <= 7 && isPlace(entry.begin));
        before = entry.begin;
    }
}

const std::vector<DocumentRules>& RulesToTry() {
    static const std::vector<DocumentRules> rules = {
        {}, {true, true, true, true, true, true}, {false, false, false, false, false, false}};
    return rules;
}

std::vector<std::string> PartsOf(std::string_view input, std::size_t count) {
    std::vector<std::string> parts;
    while (parts.size() < count) {
        const std::size_t end = parts.size() + 1 < count ? input.find('\x1f') : input.size();
        parts.emplace_back(input.substr(0, end));
        input.remove_prefix(end == std::string_view::npos ? input.size()
                                                          : std::min(end + 1, input.size()));
    }
    return parts;
}

std::string ArchiveOf(const std::vector<std::pair<std::string, std::string>>& files) {
    std::string archive;
    std::string index;
    for (const auto& [name, content] : files) {
        const auto size = static_cast<std::uint32_t>(content.size());
        const std::string sizes = Little(Checksum(content), 4) + Little(size, 4) + Little(size, 4);
        const std::string names = Little(static_cast<std::uint32_t>(name.size()), 2);
        const std::string place = Little(static_cast<std::uint32_t>(archive.size()), 4);
        archive +=
            "PK\3\4" + Little(20, 2) + Little(0, 8) + sizes + names + Little(0, 2) + name + content;
        index += "PK\1\2" + Little(20, 2) + Little(20, 2) + Little(0, 8) + sizes + names +
                 Little(0, 12) + place + name;
    }
    const std::string count = Little(static_cast<std::uint32_t>(files.size()), 2);
    return archive + index + "PK\5\6" + Little(0, 4) + count + count +
           Little(static_cast<std::uint32_t>(index.size()), 4) +
           Little(static_cast<std::uint32_t>(archive.size()), 4) + Little(0, 2);
}

void TryArchive(const std::vector<std::pair<std::string, std::string>>& files) {
    // What looks like a PDF document would start programs, which takes a hundred times as long as
    // our readers do.
    static const int hidden = ::setenv("PATH", "/none", 1);
    Must(hidden == 0);
    const std::string archive = ArchiveOf(files);
    for (const DocumentRules& rules : RulesToTry())
        MustBeSound(ReadDocument(archive, {}, rules));
}
