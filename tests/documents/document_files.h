// Documents built byte by byte.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <string>
#include <utility>
#include <vector>

using ZipFiles = std::vector<std::pair<std::string, std::string>>;  // names and contents

inline std::string ZipOf(const ZipFiles& files) {
    std::size_t room = 65536;
    for (const auto& [name, content] : files)
        room += content.size() + 1024;
    std::string bytes(room, '\0');
    std::size_t used = 0;
    archive* writer = archive_write_new();
    archive_write_set_format_zip(writer);
    archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
    for (const auto& [name, content] : files) {
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, name.c_str());
        archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_perm(entry, 0644);
        archive_write_header(writer, entry);
        archive_write_data(writer, content.data(), content.size());
        archive_entry_free(entry);
    }
    archive_write_close(writer);
    archive_write_free(writer);
    bytes.resize(used);
    return bytes;
}

inline std::string DocxOf(const std::string& body, const std::string& before = "") {
    return ZipOf({{"[Content_Types].xml", "<Types/>"},
                  {"word/document.xml", "<?xml version='1.0' encoding='UTF-8'?>" + before +
                                            "<w:document xmlns:w='w' xmlns:mc='mc'><w:body>" +
                                            body + "</w:body></w:document>"}});
}

inline std::string OdtXmlOf(const std::string& body) {
    return "<?xml version='1.0' encoding='UTF-8'?>\n<office:document xmlns:office='o' "
           "xmlns:text='t' xmlns:table='b' xmlns:draw='d'><office:meta><text:p>No</text:p>"
           "</office:meta><office:body><office:text>" +
           body + "</office:text></office:body></office:document>";
}

// Each page a list of lines.
inline std::string PdfOf(const std::vector<std::vector<std::string>>& pages) {
    std::string kids;
    std::string objects;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        std::string stream = "BT /F1 12 Tf 14 TL 72 720 Td ";
        for (const std::string& line : pages[page])
            stream += "(" + line + ") Tj T* ";
        stream += "ET";
        const std::string number = std::to_string(10 + 2 * page);
        const std::string content = std::to_string(11 + 2 * page);
        kids += number + " 0 R ";
        objects += number + " 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Contents " +
                   content + " 0 R/Resources<</Font<</F1 3 0 R>>>>>> endobj\n" + content +
                   " 0 obj <</Length " + std::to_string(stream.size()) + ">> stream\n" + stream +
                   "\nendstream endobj\n";
    }
    return "%PDF-1.4\n1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n2 0 obj <</Type/Pages/Kids[" +
           kids + "]/Count " + std::to_string(pages.size()) +
           ">> endobj\n3 0 obj <</Type/Font/Subtype/Type1/BaseFont/Helvetica>> endobj\n" + objects +
           "trailer <</Root 1 0 R>>\n%%EOF\n";
}
