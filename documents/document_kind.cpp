#include "documents/document_kind.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <string>

#include "documents/mail_text.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t kPdfMarkWithin = 1024;
constexpr std::size_t kExamined = 16384;

constexpr const char* kSound = "The file is a sound or film and holds no text that can be read.";
constexpr const char* kPacked = "The file is packed; unpack it first.";
constexpr const char* kPicture = "The file is a picture and holds no text that can be read.";

struct Signature {
    std::size_t at;
    std::string_view bytes;
    DocumentKind kind;
    const char* problem;  // of kForeign
};
constexpr DocumentKind kNone = DocumentKind::kForeign;
constexpr Signature kSignatures[] = {
    {0, "PK\x03\x04"sv, DocumentKind::kZip, nullptr},
    {0, "{\\rtf"sv, DocumentKind::kRtf, nullptr},
    {0, "AT&TFORM"sv, DocumentKind::kDjvu, nullptr},
    {0, "\x89PNG\r\n"sv, DocumentKind::kPicture, nullptr},
    {0, "\xff\xd8\xff"sv, DocumentKind::kPicture, nullptr},
    {0, "II*\0"sv, DocumentKind::kPicture, nullptr},
    {0, "MM\0*"sv, DocumentKind::kPicture, nullptr},
    {8, "WEBP"sv, DocumentKind::kPicture, nullptr},
    {0, "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv, kNone,
     "The file is an old or protected Office document; save it without password as DOCX or ODT."},
    {0, "%!PS"sv, kNone, "The file is a PostScript document; convert it to PDF first."},
    {60, "BOOKMOBI"sv, DocumentKind::kMobi, nullptr},
    {60, "TEXtREAd"sv, DocumentKind::kMobi, nullptr},
    {0, "ITSF"sv, kNone, "The file is a Windows help file and cannot be read."},
    {0, "GIF87a"sv, kNone, kPicture},
    {0, "GIF89a"sv, kNone, kPicture},
    {0, "BM"sv, kNone, kPicture},
    {0, "\0\0\1\0"sv, kNone, kPicture},
    {4, "ftypavif"sv, kNone, kPicture},
    {4, "ftyphei"sv, kNone, kPicture},
    {4, "ftyp"sv, kNone, kSound},
    {8, "WAVE"sv, kNone, kSound},
    {8, "AVI "sv, kNone, kSound},
    {0, "ID3\x03"sv, kNone, kSound},
    {0, "ID3\x04"sv, kNone, kSound},
    {0, "\xff\xfb"sv, kNone, kSound},
    {0, "OggS\0"sv, kNone, kSound},
    {0, "fLaC\0"sv, kNone, kSound},
    {0, "\x1a\x45\xdf\xa3"sv, kNone, kSound},
    {0, "\x1f\x8b\x08"sv, kNone, kPacked},
    {0, "BZh91AY&SY"sv, kNone, kPacked},
    {0,
     "\xfd"
     "7zXZ\0"sv,
     kNone, kPacked},
    {0, "\x28\xb5\x2f\xfd"sv, kNone, kPacked},
    {0, "7z\xbc\xaf\x27\x1c"sv, kNone, kPacked},
    {0, "Rar!\x1a\x07"sv, kNone, kPacked},
    {257, "ustar"sv, kNone, kPacked},
    {0,
     "\x7f"
     "ELF"sv,
     kNone, "The file is a program and holds no text that can be read."},
    {0, "SQLite format 3\0"sv, kNone,
     "The file is a data base and holds no text that can be read."},
};

// What begins an old bitmap, and many a sentence: only with the zeros of its header it is one.
bool IsTextBeginning(const Signature& signature, std::string_view bytes) {
    return signature.bytes == "BM" && bytes.substr(6, 4) != "\0\0\0\0"sv;
}

const Signature* Signed(std::string_view bytes) {
    for (const Signature& signature : kSignatures)
        if (bytes.size() > signature.at &&
            bytes.substr(signature.at).starts_with(signature.bytes) &&
            (signature.at != 8 || bytes.starts_with("RIFF")) && !IsTextBeginning(signature, bytes))
            return &signature;
    return nullptr;
}

bool IsUtf16(std::string_view bytes) {
    return bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff") ||
           DecodeText(bytes).find_first_of(" \n") != std::string::npos;
}

// Control bytes, of which texts have none but for line ends and a terminal's colours.
bool IsBinary(std::string_view bytes) {
    constexpr std::ptrdiff_t kOneIn = 20;
    constexpr std::ptrdiff_t kLeast = 4;
    bytes = bytes.substr(0, kExamined);
    const auto controls = std::count_if(bytes.begin(), bytes.end(), [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return value < 8 || (value > 13 && value < 26) || (value > 27 && value < 32);
    });
    if (controls < kLeast || controls * kOneIn < static_cast<std::ptrdiff_t>(bytes.size()))
        return false;
    const auto nuls = std::count(bytes.begin(), bytes.end(), '\0');
    const bool mayBeUtf16 = nuls * 3 > static_cast<std::ptrdiff_t>(bytes.size());
    return !mayBeUtf16 || !IsUtf16(bytes);
}

// In small letters, from the first sign on that is not in a comment.
std::string Beginning(std::string_view bytes) {
    std::string head = DecodeText(bytes.substr(0, kExamined));
    std::transform(head.begin(), head.end(), head.begin(), g_ascii_tolower);
    for (;;) {
        head.erase(0, std::min(head.find_first_not_of(kWhiteSpace), head.size()));
        const std::size_t end = head.find("-->");
        if (!head.starts_with("<!--") || end == std::string::npos)
            return head;
        head.erase(0, end + 3);
    }
}

std::string EndingOf(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    std::string ending(dot == std::string_view::npos ? "" : name.substr(dot + 1));
    std::transform(ending.begin(), ending.end(), ending.begin(), g_ascii_tolower);
    return ending;
}

// Elements that a page without "<html>" begins with.
constexpr SortedNames<44> kElements = {
    "a",       "article", "aside",  "b",      "base",  "blockquote", "body", "br",   "center",
    "div",     "dl",      "em",     "figure", "font",  "footer",     "form", "h1",   "h2",
    "h3",      "h4",      "h5",     "h6",     "head",  "header",     "hr",   "html", "i",
    "img",     "link",    "main",   "meta",   "nav",   "ol",         "p",    "pre",  "script",
    "section", "span",    "strong", "style",  "table", "title",      "tr",   "ul"};
static_assert(std::is_sorted(kElements.begin(), kElements.end()));

bool IsHtml(std::string_view beginning, const std::string& ending) {
    if (beginning.starts_with("<!doctype html") || beginning.starts_with("<html"))
        return true;
    if (beginning.starts_with("<?xml") || beginning.starts_with("<!doctype"))
        return beginning.find("<html") != std::string_view::npos;
    if (!beginning.starts_with('<') || ending == "txt")
        return false;
    const std::size_t end = beginning.find_first_of(" \t\r\n\f/>", 1);
    return end != std::string_view::npos && IsOneOf(beginning.substr(1, end - 1), kElements);
}

// Something else may stand before it, but not before it in its line, where a text names it.
bool IsPdf(std::string_view bytes) {
    constexpr std::string_view kMark = "%PDF-";
    const std::string_view within = bytes.substr(0, kPdfMarkWithin);
    for (std::size_t at = within.find(kMark); at != std::string_view::npos;
         at = within.find(kMark, at + 1)) {
        const std::size_t before = within.substr(0, at).find_last_not_of(' ');
        if (before == std::string_view::npos || !g_ascii_isprint(within[before]))
            return true;
    }
    return false;
}

DocumentKind KindByName(const std::string& beginning, const std::string& ending) {
    const bool isNamedHtml = ending == "html" || ending == "htm" || ending == "xhtml";
    if (isNamedHtml && beginning.find('<') != std::string::npos)
        return DocumentKind::kHtml;
    if (ending == "md" || ending == "markdown")
        return DocumentKind::kMarkdown;
    return ending == "eml" ? DocumentKind::kMail : DocumentKind::kPlainText;
}

}  // namespace

DocumentKind KindOf(std::string_view bytes, std::string_view name) {
    if (IsPdf(bytes))
        return DocumentKind::kPdf;
    if (const Signature* const known = Signed(bytes); known != nullptr)
        return known->kind;
    if (IsBinary(bytes))
        return DocumentKind::kForeign;
    const std::string beginning = Beginning(bytes);
    const std::string ending = EndingOf(name);
    if (beginning.starts_with("<?xml") && beginning.find("<office:document") != std::string::npos)
        return DocumentKind::kFlatOdt;
    if (beginning.find("<fictionbook") != std::string::npos && beginning.starts_with('<'))
        return DocumentKind::kFictionBook;
    if (ending != "md" && ending != "markdown" && IsHtml(beginning, ending))
        return DocumentKind::kHtml;
    if (ending != "txt" && BeginsAsMail(bytes))
        return DocumentKind::kMail;
    return KindByName(beginning, ending);
}

const char* ForeignKindProblem(std::string_view bytes) {
    const Signature* const known = Signed(bytes);
    return known != nullptr && known->problem != nullptr
               ? known->problem
               : "The file holds the data of a program, not a text.";
}
