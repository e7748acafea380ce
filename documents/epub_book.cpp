#include "documents/epub_book.h"

#include <glib.h>

#include <algorithm>
#include <map>

#include "documents/markup_reader.h"
#include "foundation/owned_text.h"

namespace {

constexpr std::size_t kMaxChapters = 20000;

class ContainerListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "rootfile" && package.empty())
            package = attributes.Value("full-path");
        else if (name == "CipherReference")
            encrypted.emplace_back(attributes.Value("URI"));
        return true;
    }
    void EvElementEnd(std::string_view) override {}
    void EvText(std::string_view) override {}

    std::string package;
    std::vector<std::string> encrypted;
};

class PackageListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "item") {
            const std::string_view type = attributes.Value("media-type");
            const bool isPage = type == "application/xhtml+xml" || type == "text/html";
            if (isPage && attributes.Value("properties").find("nav") == std::string_view::npos)
                pages.emplace(attributes.Value("id"), attributes.Value("href"));
        } else if (name == "itemref" && attributes.Value("linear") != "no" &&
                   spine.size() < kMaxChapters) {
            spine.emplace_back(attributes.Value("idref"));
        }
        return true;
    }
    void EvElementEnd(std::string_view) override {}
    void EvText(std::string_view) override {}

    std::map<std::string, std::string, std::less<>> pages;  // identifier, address
    std::vector<std::string> spine;
};

// "OEBPS/" and "../Text/a%20b.xhtml#top" give "Text/a b.xhtml".
std::string ArchiveName(std::string folder, std::string_view address) {
    address = address.substr(0, address.find('#'));
    const OwnedText plain(
        g_uri_unescape_segment(address.data(), address.data() + address.size(), nullptr));
    std::string_view rest = plain ? std::string_view(plain.get()) : address;
    while (rest.starts_with("../") || rest.starts_with("./")) {
        if (rest.starts_with("../") && !folder.empty()) {
            folder.pop_back();
            folder.resize(folder.rfind('/') + 1);
        }
        rest.remove_prefix(rest.find('/') + 1);
    }
    return rest.starts_with('/') ? std::string(rest.substr(1)) : folder + std::string(rest);
}

void Parse(std::string_view xml, MarkupListener& listener) {
    MarkupReader reader(MarkupReader::Kind::kXml, listener);
    if (reader.Feed(xml))
        reader.Finish();
}

}  // namespace

std::string EpubPackageName(std::string_view container) {
    ContainerListener listener;
    Parse(container, listener);
    return listener.package;
}

std::vector<std::string> EpubChapters(std::string_view packageName, std::string_view package) {
    PackageListener listener;
    Parse(package, listener);
    const std::string folder(packageName.substr(0, packageName.rfind('/') + 1));
    std::vector<std::string> chapters;
    for (const std::string& identifier : listener.spine)
        if (const auto found = listener.pages.find(identifier); found != listener.pages.end())
            chapters.push_back(ArchiveName(folder, found->second));
    return chapters;
}

std::vector<std::string> EpubEncryptedFiles(std::string_view encryption) {
    ContainerListener listener;
    Parse(encryption, listener);
    for (std::string& name : listener.encrypted)
        name = ArchiveName("", name);
    return std::move(listener.encrypted);
}
