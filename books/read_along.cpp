#include "books/read_along.h"

#include <glib.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "books/book_cover.h"
#include "books/zip_file.h"

namespace {

constexpr const char* kXml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr const char* kXhtml =
    "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" "
    "xmlns:epub=\"http://www.idpf.org/2007/ops\" ";
constexpr const char* kContainer =
    "<container version=\"1.0\" xmlns=\"urn:oasis:names:tc:opendocument:xmlns:container\">"
    "<rootfiles><rootfile full-path=\"book/package.opf\" "
    "media-type=\"application/oebps-package+xml\"/></rootfiles></container>\n";
constexpr const char* kStyle =
    "body { margin: 5%; line-height: 1.5; }\n.heard { background-color: #ffe08a; color: #000; }\n";

// What XML 1.0 has no place for becomes a blank.
std::string XmlEscaped(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '&')
            escaped += "&amp;";
        else if (byte == '<')
            escaped += "&lt;";
        else if (byte == '>')
            escaped += "&gt;";
        else if (byte == '"')
            escaped += "&quot;";
        else
            escaped += static_cast<unsigned char>(byte) < ' ' && byte != '\t' ? ' ' : byte;
    }
    for (const char* const never : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})  // U+FFFE, U+FFFF
        for (std::size_t at = escaped.find(never); at != std::string::npos;
             at = escaped.find(never))
            escaped.replace(at, 3, " ");
    return escaped;
}

std::string ClockValue(long long milliseconds) {
    char text[40];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld.%03lld", milliseconds / 3600000,
                  milliseconds / 60000 % 60, milliseconds / 1000 % 60, milliseconds % 1000);
    return text;
}

std::string Number(std::size_t index) {
    char text[32];
    std::snprintf(text, sizeof text, "%05zu", index + 1);
    return text;
}

long long HeardMilliseconds(const ReadAlongChapter& chapter) {
    long long sum = 0;
    for (const SubtitleLine& line : chapter.lines)
        sum += line.end - line.begin;
    return sum;
}

class ReadAlong {
public:
    ReadAlong(const std::string& path, const BookPlan& plan, const std::string& text,
              std::string language, const std::vector<ReadAlongChapter>& chapters)
        : zip_(path),
          plan_(plan),
          text_(text),
          language_(std::move(language)),
          chapters_(chapters) {}

    std::string Write(LProgress& progress);

private:
    std::string PageHead(const std::string& title) const;
    std::string Page(std::size_t index) const;
    std::string Overlay(std::size_t index) const;
    std::string Navigation() const;
    std::string Package() const;
    std::string Identifier() const;
    std::string CoverName() const {
        return "cover." + std::string(std::string_view(PictureType(plan_.cover)).substr(6));
    }
    int HeadingLevel(std::size_t begin, std::size_t end) const;

    ZipFile zip_;
    const BookPlan& plan_;
    const std::string& text_;
    const std::string language_;
    const std::vector<ReadAlongChapter>& chapters_;
};

std::string ReadAlong::PageHead(const std::string& title) const {
    const std::string language = XmlEscaped(language_);
    return std::string(kXml) + kXhtml + "lang=\"" + language + "\" xml:lang=\"" + language +
           "\"><head><title>" + XmlEscaped(title) +
           "</title><link rel=\"stylesheet\" type=\"text/css\" href=\"style.css\"/></head><body "
           "id=\"text\">\n";
}

// 0: the stretch is no heading.
int ReadAlong::HeadingLevel(std::size_t begin, std::size_t end) const {
    for (const DocumentHeading& heading : plan_.headings)
        if (heading.begin >= begin && heading.begin < end)
            return std::clamp(heading.level, 1, 6);
    return 0;
}

// A line of the text is a paragraph. A sentence that goes on in the next one is marked in both.
std::string ReadAlong::Page(std::size_t index) const {
    const BookChapter& chapter = plan_.chapters[index];
    const std::vector<SubtitleLine>& lines = chapters_[index].lines;
    std::string page = PageHead(chapter.title);
    std::size_t next = 0;
    std::size_t named = lines.size();  // the sentence that was begun last
    for (std::size_t begin = chapter.begin; begin < chapter.end;) {
        const std::size_t end = std::min(text_.find('\n', begin), chapter.end);
        std::string inner;
        std::size_t at = begin;
        bool isMarked = false;
        for (; next < lines.size(); ++next) {
            const std::size_t from = std::max(chapter.begin + lines[next].sourceBegin, at);
            const std::size_t to = std::min(chapter.begin + lines[next].sourceEnd, end);
            if (from >= end)
                break;
            inner += XmlEscaped(std::string_view(text_).substr(at, from - at));
            const std::string sentence =
                XmlEscaped(std::string_view(text_).substr(from, to - from));
            inner += named == next
                         ? sentence
                         : "<span id=\"s" + std::to_string(next) + "\">" + sentence + "</span>";
            named = next;
            isMarked = true;
            at = to;
            if (chapter.begin + lines[next].sourceEnd > end)
                break;
        }
        inner += XmlEscaped(std::string_view(text_).substr(at, end - at));
        if (isMarked || inner.find_first_not_of(" \t") != std::string::npos) {
            const int level = HeadingLevel(begin, end);
            const std::string tag = level > 0 ? "h" + std::to_string(level) : "p";
            page += "<" + tag + ">" + inner + "</" + tag + ">\n";
        }
        begin = end + 1;
    }
    return page + "</body></html>\n";
}

std::string ReadAlong::Overlay(std::size_t index) const {
    const std::string number = Number(index);
    std::string overlay = std::string(kXml) +
                          "<smil xmlns=\"http://www.w3.org/ns/SMIL\" "
                          "xmlns:epub=\"http://www.idpf.org/2007/ops\" version=\"3.0\"><body>\n"
                          "<seq id=\"all\" epub:textref=\"" +
                          number + ".xhtml#text\" epub:type=\"bodymatter\">\n";
    const std::vector<SubtitleLine>& lines = chapters_[index].lines;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string name = std::to_string(i);
        overlay += "<par id=\"p" + name + "\"><text src=\"" + number + ".xhtml#s" + name +
                   "\"/><audio src=\"" + number + ".mp3\" clipBegin=\"" +
                   ClockValue(lines[i].begin) + "\" clipEnd=\"" + ClockValue(lines[i].end) +
                   "\"/></par>\n";
    }
    return overlay + "</seq></body></smil>\n";
}

std::string ReadAlong::Navigation() const {
    std::string page = PageHead(plan_.title) + "<nav epub:type=\"toc\" id=\"toc\"><h1>" +
                       XmlEscaped(plan_.title) + "</h1><ol>\n";
    for (std::size_t i = 0; i < plan_.chapters.size(); ++i)
        page += "<li><a href=\"" + Number(i) + ".xhtml\">" + XmlEscaped(plan_.chapters[i].title) +
                "</a></li>\n";
    return page + "</ol></nav></body></html>\n";
}

// The same of the same book.
std::string ReadAlong::Identifier() const {
    gchar* const sum = g_compute_checksum_for_string(
        G_CHECKSUM_SHA256, (plan_.title + "\n" + plan_.author + "\n" + text_).c_str(), -1);
    std::string digits(sum, 32);
    g_free(sum);
    for (const std::size_t at : {8U, 13U, 18U, 23U})
        digits.insert(at, "-");
    digits[14] = '8';  // a version of our own, of the usual variant
    digits[19] = 'a';
    return "urn:uuid:" + digits;
}

std::string ReadAlong::Package() const {
    char modified[32] = "";
    const std::time_t now = std::time(nullptr);
    std::tm utc = {};
    if (::gmtime_r(&now, &utc) != nullptr)
        std::strftime(modified, sizeof modified, "%Y-%m-%dT%H:%M:%SZ", &utc);
    std::string metadata = "<dc:identifier id=\"id\">" + Identifier() +
                           "</dc:identifier><dc:title>" + XmlEscaped(plan_.title) +
                           "</dc:title><dc:language>" + XmlEscaped(language_) +
                           "</dc:language><meta property=\"dcterms:modified\">" + modified +
                           "</meta>\n<meta property=\"media:active-class\">heard</meta>\n";
    if (!plan_.author.empty())
        metadata += "<dc:creator>" + XmlEscaped(plan_.author) + "</dc:creator>\n";
    std::string manifest =
        "<item id=\"nav\" href=\"nav.xhtml\" media-type=\"application/xhtml+xml\" "
        "properties=\"nav\"/>\n<item id=\"style\" href=\"style.css\" media-type=\"text/css\"/>\n";
    if (!plan_.cover.empty())
        manifest += "<item id=\"cover\" href=\"" + CoverName() + "\" media-type=\"" +
                    PictureType(plan_.cover) + "\" properties=\"cover-image\"/>\n";
    std::string spine;
    long long whole = 0;
    for (std::size_t i = 0; i < chapters_.size(); ++i) {
        const std::string number = Number(i);
        const bool isHeard = !chapters_[i].lines.empty();
        manifest += "<item id=\"c" + number + "\" href=\"" + number +
                    ".xhtml\" media-type=\"application/xhtml+xml\"" +
                    (isHeard ? " media-overlay=\"o" + number + "\"" : "") + "/>\n";
        spine += "<itemref idref=\"c" + number + "\"/>\n";
        if (!isHeard)
            continue;
        manifest += "<item id=\"o" + number + "\" href=\"" + number +
                    ".smil\" media-type=\"application/smil+xml\"/>\n<item id=\"a" + number +
                    "\" href=\"" + number + ".mp3\" media-type=\"audio/mpeg\"/>\n";
        const long long heard = HeardMilliseconds(chapters_[i]);
        metadata += "<meta property=\"media:duration\" refines=\"#o" + number + "\">" +
                    ClockValue(heard) + "</meta>\n";
        whole += heard;
    }
    metadata += "<meta property=\"media:duration\">" + ClockValue(whole) + "</meta>\n";
    return std::string(kXml) +
           "<package xmlns=\"http://www.idpf.org/2007/opf\" version=\"3.0\" "
           "unique-identifier=\"id\"><metadata xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n" +
           metadata + "</metadata>\n<manifest>\n" + manifest + "</manifest>\n<spine>\n" + spine +
           "</spine></package>\n";
}

std::string ReadAlong::Write(LProgress& progress) {
    zip_.Add("mimetype", "application/epub+zip");  // first, as readers of the format want it
    zip_.Add("META-INF/container.xml", std::string(kXml) + kContainer);
    zip_.Add("book/package.opf", Package());
    zip_.Add("book/nav.xhtml", Navigation());
    zip_.Add("book/style.css", kStyle);
    if (!plan_.cover.empty())
        zip_.Add("book/" + CoverName(), plan_.cover);
    for (std::size_t i = 0; i < chapters_.size(); ++i) {
        zip_.Add("book/" + Number(i) + ".xhtml", Page(i));
        if (chapters_[i].lines.empty())
            continue;
        zip_.Add("book/" + Number(i) + ".smil", Overlay(i));
        zip_.AddFile("book/" + Number(i) + ".mp3", chapters_[i].sound, progress);
    }
    return zip_.Finish();
}

}  // namespace

std::string WriteReadAlong(const std::string& path, const BookPlan& plan, const std::string& text,
                           const std::string& voiceLanguage,
                           const std::vector<ReadAlongChapter>& chapters, LProgress& progress) {
    const std::string language = !plan.language.empty()   ? plan.language
                                 : !voiceLanguage.empty() ? voiceLanguage
                                                          : "und";
    return ReadAlong(path, plan, text, language, chapters).Write(progress);
}
