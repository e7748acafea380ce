#include "documents/epub_book.h"

#include <algorithm>

#include "documents/html_reader.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kMostChapters = 20000;
constexpr const char* kOnlyPage = "index.html";

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
        fact_ = nullptr;
        if (name == "item") {
            Item(attributes);
        } else if (name == "itemref" && attributes.Value("linear") != "no" &&
                   spine.size() < kMostChapters) {
            spine.emplace_back(attributes.Value("idref"));
        } else if (name == "meta" && attributes.Value("name") == "cover") {
            coverItem = attributes.Value("content");
        } else if (name == "title" && title.empty()) {
            fact_ = &title;
        } else if (name == "creator" && author.empty()) {
            fact_ = &author;
        } else if (name == "language" && language.empty()) {
            fact_ = &language;
        }
        return true;
    }
    void EvElementEnd(std::string_view) override { fact_ = nullptr; }
    void EvText(std::string_view text) override {
        if (fact_ != nullptr && fact_->size() + text.size() < kLongestFact)
            *fact_ += text;
    }

    std::map<std::string, std::string, std::less<>> items;  // identifier, address
    std::map<std::string, std::string, std::less<>> pages;  // of these, those that are pages
    std::vector<std::string> spine;
    std::string contentsPage;
    std::string contentsFile;
    std::string coverItem;
    std::string title;
    std::string author;
    std::string language;

private:
    void Item(const MarkupAttributes& attributes) {
        const std::string id(attributes.Value("id"));
        const std::string address(attributes.Value("href"));
        const std::string_view type = attributes.Value("media-type");
        items.emplace(id, address);
        if (attributes.HasWord("properties", "cover-image"))
            coverItem = id;
        if (attributes.HasWord("properties", "nav"))
            contentsPage = address;
        else if (type == "application/xhtml+xml" || type == "text/html" ||
                 type == "application/x-dtbook+xml")
            pages.emplace(id, address);
        else if (type == "application/x-dtbncx+xml")
            contentsFile = address;
    }

    std::string* fact_ = nullptr;  // that the text belongs to
};

// Titles with the addresses of their chapters: "navPoint" elements, or links.
class ContentsListener : public MarkupListener {
public:
    ContentsListener(const ZipIndex& index, std::string folder, EpubBook& book)
        : index_(index), folder_(std::move(folder)), book_(book) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "text" || name == "a") {
            title_.clear();
            address_ = attributes.Value("href");
            isInTitle_ = true;
        } else if (name == "content") {
            address_ = attributes.Value("src");
            Keep();
        }
        return name != "docTitle" && name != "docAuthor";
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "a")
            Keep();
        isInTitle_ = isInTitle_ && name != "text" && name != "a";
    }
    void EvText(std::string_view text) override {
        if (isInTitle_ && title_.size() + text.size() < kLongestFact)
            title_ += text;
    }

private:
    void Keep() {
        TextFlow flow;
        flow.Add(title_);
        if (const std::string name = index_.Find(folder_, address_); !name.empty())
            book_.titles.emplace(name, flow.Take());
    }

    const ZipIndex& index_;
    std::string folder_;
    EpubBook& book_;
    std::string title_;
    std::string address_;
    bool isInTitle_ = false;
};

std::string PackageName(const ZipIndex& index) {
    ContainerListener listener;
    ParseXml(index.Content("META-INF/container.xml"), listener);
    std::string name = index.Find("", listener.package);
    if (name.empty())
        for (const std::string& file : index.names)
            if (file.ends_with(".opf"))
                return file;
    return name;
}

}  // namespace

EpubBook ReadEpubPackage(const ZipIndex& index) {
    const std::string package = PackageName(index);
    const std::string folder = FolderInZip(package);
    PackageListener listener;
    ParseXml(index.Content(package), listener);
    EpubBook book;
    for (const std::string& identifier : listener.spine)
        if (const auto found = listener.pages.find(identifier); found != listener.pages.end())
            book.chapters.push_back({found->second, index.Find(folder, found->second)});
    // HTMLZ is one page beside what is told about it.
    if (listener.spine.empty() && index.Has(kOnlyPage))
        book.chapters.push_back({kOnlyPage, kOnlyPage});
    if (const auto cover = listener.items.find(listener.coverItem); cover != listener.items.end())
        book.cover = index.Find(folder, cover->second);
    book.contentsPage =
        listener.contentsPage.empty() ? "" : index.Find(folder, listener.contentsPage);
    book.title = std::move(listener.title);
    book.author = std::move(listener.author);
    book.language = std::move(listener.language);
    if (const std::string contents =
            listener.contentsFile.empty() ? "" : index.Find(folder, listener.contentsFile);
        !contents.empty()) {
        ContentsListener titles(index, FolderInZip(contents), book);
        ParseXml(index.Content(contents), titles);
    }
    return book;
}

void ReadEpubContents(std::string_view page, const ZipIndex& index, EpubBook& book) {
    const std::string text = DecodeMarkup(page);
    ContentsListener titles(index, FolderInZip(book.contentsPage), book);
    HtmlReader reader(text, titles);
    while (reader.ReadSome()) {
    }
}

std::vector<std::string> EpubEncryptedFiles(const ZipIndex& index) {
    ContainerListener listener;
    ParseXml(index.Content("META-INF/encryption.xml"), listener);
    std::vector<std::string> names;
    names.reserve(listener.encrypted.size());
    for (const std::string& address : listener.encrypted)
        names.push_back(index.Find("", address));
    return names;
}
