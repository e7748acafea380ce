#include "documents/mail_text.h"

#include <glib.h>
#include <gmime/gmime.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "documents/html_text.h"
#include "documents/problems.h"
#include "documents/small_texts.h"
#include "documents/text_flow.h"
#include "foundation/owned_text.h"

namespace {

constexpr std::size_t kLongestMailHead = 65536;
constexpr int kDeepest = 20;             // of mails and parts within each other
constexpr std::size_t kMostParts = 200;  // that may hold others: the library goes as deep as these

template <typename T>
struct Unref {
    void operator()(T* object) const { g_object_unref(object); }
};
template <typename T>
using Owned = std::unique_ptr<T, Unref<T>>;

std::string OrEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

class MailReader {
public:
    MailReader(TextFlow& flow, const ReadingWatch& watch, const DocumentRules& rules)
        : flow_(flow), watch_(watch), rules_(rules) {}

    const std::string& Problem() const { return problem_; }

    void Read(GMimeMessage* mail, int depth) {
        flow_.BeginHeading(std::min(depth + 1, 6));
        flow_.Add(OrEmpty(g_mime_message_get_subject(mail)));
        flow_.EndHeading();
        AddHead("From: ", Names(g_mime_message_get_from(mail)));
        AddHead("To: ", Names(g_mime_message_get_to(mail)));
        if (GDateTime* const date = g_mime_message_get_date(mail)) {
            const OwnedText written(g_date_time_format(date, "%B %Y, %H:%M"));
            AddHead("Date: ", std::to_string(g_date_time_get_day_of_month(date)) + " " +
                                  OrEmpty(written.get()));
        }
        flow_.EndParagraph();
        ReadPart(g_mime_message_get_mime_part(mail), depth + 1);
    }
    static std::string Names(InternetAddressList* list) {
        std::string names;
        for (int i = 0; list != nullptr && i < internet_address_list_length(list); ++i) {
            InternetAddress* const address = internet_address_list_get_address(list, i);
            std::string name = OrEmpty(internet_address_get_name(address));
            if (name.empty() && INTERNET_ADDRESS_IS_MAILBOX(address))
                name =
                    OrEmpty(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address)));
            names += (names.empty() || name.empty() ? "" : ", ") + name;
        }
        return names;
    }

private:
    void AddHead(const char* what, const std::string& value) {
        if (value.empty())
            return;
        flow_.AddBlank();
        flow_.Add(what);
        flow_.AddBlank();
        flow_.Add(value);
        flow_.EndLine();
    }

    void ReadPart(GMimeObject* part, int depth) {
        if (part == nullptr || !problem_.empty())
            return;
        if (watch_.IsToEnd() || flow_.IsTooLong() || depth > kDeepest) {
            problem_ = watch_.IsToEnd() ? watch_.Problem() : kTooLongDocument;
        } else if (GMIME_IS_MULTIPART(part)) {
            ReadParts(GMIME_MULTIPART(part), depth);
        } else if (GMIME_IS_MESSAGE_PART(part)) {
            if (GMimeMessage* const inner =
                    g_mime_message_part_get_message(GMIME_MESSAGE_PART(part)))
                Read(inner, depth);
        } else if (GMIME_IS_TEXT_PART(part) && !g_mime_part_is_attachment(GMIME_PART(part))) {
            ReadText(GMIME_TEXT_PART(part));
        } else if (GMIME_IS_PART(part)) {
            const std::string name = OrEmpty(g_mime_part_get_filename(GMIME_PART(part)));
            if (!name.empty()) {
                flow_.EndParagraph();
                AddHead("Attached: ", name);
            }
        }
    }
    void ReadParts(GMimeMultipart* parts, int depth) {
        const int count = g_mime_multipart_get_count(parts);
        GMimeContentType* const type = g_mime_object_get_content_type(GMIME_OBJECT(parts));
        if (!g_mime_content_type_is_type(type, "multipart", "alternative")) {
            for (int i = 0; i < count; ++i)
                ReadPart(g_mime_multipart_get_part(parts, i), depth + 1);
            return;
        }
        // The same once more in other forms: as plain text it has no menus.
        for (int i = 0; i < count; ++i) {
            GMimeObject* const part = g_mime_multipart_get_part(parts, i);
            if (GMIME_IS_TEXT_PART(part) && IsText(part, "plain") &&
                !Content(GMIME_TEXT_PART(part)).empty())
                return ReadPart(part, depth + 1);
        }
        // The last one is the best; invitations stand behind the letter.
        for (int i = count; i-- > 0;) {
            GMimeObject* const part = g_mime_multipart_get_part(parts, i);
            if (GMIME_IS_MULTIPART(part) || IsHtml(part))
                return ReadPart(part, depth + 1);
        }
        if (count > 0)
            ReadPart(g_mime_multipart_get_part(parts, count - 1), depth + 1);
    }
    static bool IsText(GMimeObject* part, const char* kind) {
        return g_mime_content_type_is_type(g_mime_object_get_content_type(part), "text", kind) !=
               FALSE;
    }
    static bool IsHtml(GMimeObject* part) { return IsText(part, "html"); }
    static std::string Content(GMimeTextPart* part) {
        const OwnedText text(g_mime_text_part_get_text(part));
        std::string content = OrEmpty(text.get());
        if (g_utf8_validate(content.data(), static_cast<gssize>(content.size()), nullptr) ==
            FALSE) {
            const OwnedText valid(
                g_utf8_make_valid(content.data(), static_cast<gssize>(content.size())));
            content = valid.get();
        }
        const bool hasWords = content.find_first_not_of(kWhiteSpace) != std::string::npos;
        return hasWords ? content : "";
    }
    void ReadText(GMimeTextPart* part) {
        flow_.EndParagraph();
        const std::string text = Content(part);
        if (!IsHtml(GMIME_OBJECT(part))) {
            flow_.AddLines(text);
        } else {
            PageFacts facts;
            problem_ = ReadHtml(text, watch_, rules_, flow_, facts);
        }
        flow_.EndParagraph();
    }

    TextFlow& flow_;
    const ReadingWatch& watch_;
    const DocumentRules& rules_;
    std::string problem_;
};

// In letters of any case.
std::size_t Count(std::string text, std::string_view what) {
    std::transform(text.begin(), text.end(), text.begin(), g_ascii_tolower);
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + what.size()))
        ++count;
    return count;
}

// "Received", with the colon behind it; empty for what is none.
std::string_view FieldOf(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0)
        return {};
    const std::string_view name = line.substr(0, colon);
    return std::all_of(name.begin(), name.end(),
                       [](char sign) { return g_ascii_isalnum(sign) || sign == '-'; })
               ? name
               : std::string_view();
}

}  // namespace

Document ReadMail(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    static const bool isReady = (g_mime_init(), true);
    if (!isReady ||
        Count(std::string(bytes), "multipart/") + Count(std::string(bytes), "message/rfc822") >
            kMostParts)
        return DocumentProblem(kTooLongDocument);
    const Owned<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
    const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    const Owned<GMimeMessage> mail(g_mime_parser_construct_message(parser.get(), nullptr));
    if (!mail)
        return DocumentProblem(kDamagedDocument);
    TextFlow flow(rules.referenceMarks);
    MailReader reader(flow, watch, rules);
    reader.Read(mail.get(), 0);
    if (!reader.Problem().empty())
        return DocumentProblem(reader.Problem());
    Document document = flow.TakeDocument();
    document.title = OrEmpty(g_mime_message_get_subject(mail.get()));
    document.author = MailReader::Names(g_mime_message_get_from(mail.get()));
    return document;
}

bool BeginsAsMail(std::string_view bytes) {
    bytes = bytes.substr(0, kLongestMailHead);
    bool hasFrom = false;
    bool hasOther = false;
    while (!bytes.empty()) {
        const std::size_t end = std::min(bytes.find('\n'), bytes.size());
        std::string_view line = bytes.substr(0, end);
        bytes.remove_prefix(std::min(end + 1, bytes.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty())
            break;
        if (line.front() == ' ' || line.front() == '\t')
            continue;
        const std::string_view field = FieldOf(line);
        if (field.empty())
            return false;
        const auto is = [field](std::string_view name) {
            return field.size() == name.size() &&
                   g_ascii_strncasecmp(field.data(), name.data(), name.size()) == 0;
        };
        hasFrom = hasFrom || is("From");
        hasOther = hasOther || is("Date") || is("Message-ID") || is("Received") || is("Subject");
    }
    return hasFrom && hasOther;
}
