#include "documents/document_kind.h"

#include <glib.h>

#include <algorithm>
#include <string>

#include "documents/text_charset.h"

namespace {

using std::string_view_literals::operator""sv;

constexpr std::size_t kHead = 1024;

constexpr const char* kPicture = "The file is a picture and holds no text that can be read.";
constexpr const char* kSound = "The file is a sound or film and holds no text that can be read.";
constexpr const char* kPacked = "The file is packed; unpack it first.";

struct Foreign {
    std::string_view beginning;
    const char* problem;
};
constexpr Foreign kForeign[] = {
    {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv,
     "The file is an old or protected Office document; save it without password as DOCX or ODT."},
    {"{\\rtf"sv, "The file is an RTF document; save it as DOCX, ODT or plain text."},
    {"%!PS"sv, "The file is a PostScript document; convert it to PDF first."},
    {"\x89PNG\r\n"sv, kPicture},
    {"\xff\xd8\xff"sv, kPicture},
    {"GIF87a"sv, kPicture},
    {"GIF89a"sv, kPicture},
    {"ID3\x03"sv, kSound},
    {"ID3\x04"sv, kSound},
    {"OggS\0"sv, kSound},
    {"fLaC\0"sv, kSound},
    {"\x1f\x8b\x08"sv, kPacked},
    {"BZh91AY&SY"sv, kPacked},
    {"\xfd"
     "7zXZ\0"sv,
     kPacked},
    {"7z\xbc\xaf\x27\x1c"sv, kPacked},
    {"Rar!\x1a\x07"sv, kPacked},
    {"\x7f"
     "ELF"sv,
     "The file is a program and holds no text that can be read."},
};

// In small letters, from the first sign on.
std::string Beginning(std::string_view bytes) {
    std::string head = DecodeText(bytes.substr(0, 2 * kHead));
    head.erase(0, std::min(head.find_first_not_of(" \t\r\n"), head.size()));
    std::transform(head.begin(), head.end(), head.begin(), g_ascii_tolower);
    return head;
}

bool IsHtml(std::string_view beginning) {
    if (beginning.starts_with("<?xml") || beginning.starts_with("<!--"))
        return beginning.find("<html") != std::string_view::npos;
    for (const std::string_view tag :
         {"<!doctype html", "<html", "<head", "<body", "<title", "<meta ", "<h1", "<p>", "<div"})
        if (beginning.starts_with(tag))
            return true;
    return false;
}

}  // namespace

DocumentKind KindOf(std::string_view bytes) {
    if (bytes.substr(0, kHead).find("%PDF-") != std::string_view::npos)
        return DocumentKind::kPdf;
    if (bytes.starts_with("PK\x03\x04"))
        return DocumentKind::kZip;
    if (ForeignKindProblem(bytes) != nullptr)
        return DocumentKind::kForeign;
    const std::string beginning = Beginning(bytes);
    if (beginning.starts_with("<?xml") && beginning.find("<office:document") != std::string::npos)
        return DocumentKind::kFlatOdt;
    return IsHtml(beginning) ? DocumentKind::kHtml : DocumentKind::kPlainText;
}

const char* ForeignKindProblem(std::string_view bytes) {
    for (const Foreign& foreign : kForeign)
        if (bytes.starts_with(foreign.beginning))
            return foreign.problem;
    const bool isRiff =
        bytes.starts_with("RIFF") && (bytes.substr(8, 4) == "WAVE" || bytes.substr(8, 4) == "AVI ");
    return isRiff ? kSound : nullptr;
}
