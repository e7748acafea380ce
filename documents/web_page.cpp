#include "documents/web_page.h"

#include <glib.h>
#include <sys/socket.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "documents/curl_library.h"
#include "documents/document_kind.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "documents/web_address.h"
#include "foundation/owned_text.h"

namespace {

constexpr int kMostSteps = 10;
constexpr std::size_t kMostHeaderBytes = 256U << 10;
constexpr long kSlowSeconds = 20;  // without a byte

using Clock = std::chrono::steady_clock;
using EasyHandle = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using UrlHandle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

// One request: what it may do, and what came of it.
struct Step {
    const StopTest& isToStop;
    const WebBounds& bounds;
    bool mayBeLocal = true;
    bool wasLocal = false;
    bool wasRefused = false;
    bool isTooLong = false;
    std::size_t headerBytes = 0;
    std::string body{};
};

curl_socket_t OpenSocket(void* user, curlsocktype, curl_sockaddr* address) {
    auto* step = static_cast<Step*>(user);
    const bool isLocal = IsLocalAddress(address->addr);
    step->wasLocal = step->wasLocal || isLocal;
    if (isLocal && !step->mayBeLocal) {
        step->wasRefused = true;
        return CURL_SOCKET_BAD;
    }
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

std::size_t TakeBody(char* bytes, std::size_t size, std::size_t count, void* user) {
    auto* step = static_cast<Step*>(user);
    if (step->body.size() + size * count > step->bounds.bytes) {
        step->isTooLong = true;
        return 0;
    }
    step->body.append(bytes, size * count);
    return size * count;
}

std::size_t CountHeader(char*, std::size_t size, std::size_t count, void* user) {
    auto* step = static_cast<Step*>(user);
    step->headerBytes += size * count;
    step->isTooLong = step->headerBytes > kMostHeaderBytes;
    return step->isTooLong ? 0 : size * count;
}

int AskWhetherToStop(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    const auto* step = static_cast<Step*>(user);
    return step->isToStop && step->isToStop() ? 1 : 0;
}

void SetUp(CURL* handle, const std::string& address, Clock::time_point end, Step& step) {
    const auto set = CurlLibrary::Get().easySetopt;
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    set(handle, CURLOPT_URL, address.c_str());
    set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    set(handle, CURLOPT_FOLLOWLOCATION, 0L);  // each step is looked at first
    set(handle, CURLOPT_PROXY, "");           // it would choose the addresses
    set(handle, CURLOPT_NOSIGNAL, 1L);
    set(handle, CURLOPT_USERAGENT, "Lectora/1.05");
    set(handle, CURLOPT_ACCEPT_ENCODING, "");
    set(handle, CURLOPT_TIMEOUT_MS, std::max<long>(1, left));
    set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(step.bounds.connecting.count()));
    set(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(handle, CURLOPT_LOW_SPEED_TIME, kSlowSeconds);
    set(handle, CURLOPT_OPENSOCKETFUNCTION, OpenSocket);
    set(handle, CURLOPT_OPENSOCKETDATA, &step);
    set(handle, CURLOPT_WRITEFUNCTION, TakeBody);
    set(handle, CURLOPT_WRITEDATA, &step);
    set(handle, CURLOPT_HEADERFUNCTION, CountHeader);
    set(handle, CURLOPT_HEADERDATA, &step);
    set(handle, CURLOPT_NOPROGRESS, 0L);
    set(handle, CURLOPT_XFERINFOFUNCTION, AskWhetherToStop);
    set(handle, CURLOPT_XFERINFODATA, &step);
}

std::string PartOf(const std::string& address, CURLUPart part) {
    const CurlLibrary& curl = CurlLibrary::Get();
    const UrlHandle url(curl.url(), curl.urlCleanup);
    char* text = nullptr;
    if (!url || curl.urlSet(url.get(), CURLUPART_URL, address.c_str(), 0) != CURLUE_OK ||
        curl.urlGet(url.get(), part, &text, 0) != CURLUE_OK)
        return {};
    std::string owned(text);
    curl.free(text);
    return owned;
}

std::string TransferProblem(CURLcode code, const Step& step, const std::string& host) {
    if (step.wasRefused)
        return host +
               " is an address inside this computer or network; a page that leads there is "
               "not followed.";
    if (step.isTooLong)
        return host + " sends more than can be read.";
    switch (code) {
        case CURLE_OK:
            return {};
        case CURLE_ABORTED_BY_CALLBACK:
            return "Fetching the page was stopped.";
        case CURLE_COULDNT_RESOLVE_HOST:
            return "There is no site called " + host + ", or this computer is not connected.";
        case CURLE_COULDNT_CONNECT:
            return host + " does not answer.";
        case CURLE_OPERATION_TIMEDOUT:
            return host + " is too slow: the page did not come in time.";
        case CURLE_PEER_FAILED_VERIFICATION:
            return host + " cannot prove that it is what it says: its certificate is not valid.";
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_GOT_NOTHING:
            return host + " ended the connection before the page was whole.";
        case CURLE_UNSUPPORTED_PROTOCOL:  // an answer without a head
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_BAD_CONTENT_ENCODING:
        case CURLE_HTTP2:
            return host + " answers with something that is no web page.";
        case CURLE_SSL_CONNECT_ERROR:
            return host + " cannot be reached over a secure connection.";
        case CURLE_URL_MALFORMAT:
            return "This is no address of a web page.";
        default:
            return host + " cannot be read: " + CurlLibrary::Get().easyStrerror(code) + ".";
    }
}

std::string StatusProblem(long status, const std::string& host) {
    if (status >= 200 && status < 300)
        return {};
    const std::string number = " (" + std::to_string(status) + ").";
    if (status == 404 || status == 410)
        return host + " has no such page" + number;
    if (status == 401 || status == 402 || status == 403)
        return host + " shows this page only to those it knows" + number;
    return host + " does not send the page" + number;
}

// Files are known by their endings where what they hold does not tell.
std::string NameFor(const std::string& address, std::string_view type) {
    std::string path = PartOf(address, CURLUPART_PATH);
    std::string name = path.substr(path.rfind('/') + 1);
    constexpr std::pair<std::string_view, std::string_view> kEndings[] = {
        {"text/html", ".html"}, {"application/xhtml", ".html"}, {"text/markdown", ".md"}};
    for (const auto& [begin, ending] : kEndings)
        if (type.starts_with(begin) && !name.ends_with(ending))
            name += ending;
    return name;
}

// In the charset that the server names; UTF-8 with its mark, which counts more than what the page
// says of itself.
void Decode(std::string& bytes, std::string_view type, std::string_view name) {
    constexpr std::string_view kCharset = "charset=";
    const std::size_t at = type.find(kCharset);
    // Servers name one for whatever files they send.
    const DocumentKind kind = KindOf(bytes, name);
    const bool isText = kind == DocumentKind::kHtml || kind == DocumentKind::kPlainText ||
                        kind == DocumentKind::kMarkdown;
    // What is whole UTF-8 beyond ASCII is nothing else, whatever the server says.
    const bool isUtf8 =
        g_utf8_validate(bytes.data(), static_cast<gssize>(bytes.size()), nullptr) != 0 &&
        std::ranges::any_of(bytes, [](char byte) { return (byte & 0x80) != 0; });
    if (at == std::string_view::npos || !isText || IsByteOrderMarked(bytes))
        return;
    std::string charset(type.substr(at + kCharset.size()));
    charset.resize(std::min(charset.find_first_of("; "), charset.size()));
    std::erase(charset, '"');
    if (isUtf8)
        charset = "utf-8";
    if (const std::optional<std::string> text = DecodeCharset(bytes, charset); text)
        bytes = "\xef\xbb\xbf" + *text;
}

// Where the page leads on to; a sentence when it must not be followed.
std::string RefusalOf(const std::string& from, const std::string& to, const std::string& host) {
    if (!IsWebAddress(to))
        return host + " leads to what is no web page.";
    if (PartOf(from, CURLUPART_SCHEME) == "https" && PartOf(to, CURLUPART_SCHEME) != "https")
        return host + " leads from a secure page to one that is not.";
    if (!PartOf(to, CURLUPART_USER).empty())
        return host + " leads to an address with a password in it.";
    return {};
}

}  // namespace

WebPage FetchWebPage(const std::string& typed, const StopTest& isToStop, const WebBounds& bounds) {
    const CurlLibrary& curl = CurlLibrary::Get();
    const EasyHandle handle(curl.isReady ? curl.easyInit() : nullptr, curl.easyCleanup);
    if (!handle)
        return {{}, {}, "Web pages cannot be fetched on this computer."};
    const Clock::time_point end = Clock::now() + bounds.time;
    std::string address(Trimmed(typed));
    const std::string first = PartOf(address, CURLUPART_HOST);
    bool isFirstLocal = false;
    for (int steps = 0; steps < kMostSteps; ++steps) {
        const std::string host = PartOf(address, CURLUPART_HOST);
        Step step{isToStop, bounds};
        step.mayBeLocal = steps == 0 || (isFirstLocal && host == first);
        SetUp(handle.get(), address, end, step);
        const CURLcode code = curl.easyPerform(handle.get());
        if (std::string problem = TransferProblem(code, step, host); !problem.empty())
            return {{}, {}, std::move(problem)};
        isFirstLocal = isFirstLocal || (steps == 0 && step.wasLocal);
        const char* next = nullptr;
        curl.easyGetinfo(handle.get(), CURLINFO_REDIRECT_URL, &next);
        if (next == nullptr) {
            long status = 0;
            const char* type = nullptr;
            curl.easyGetinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
            curl.easyGetinfo(handle.get(), CURLINFO_CONTENT_TYPE, &type);
            std::string kind = type == nullptr ? "" : type;
            std::transform(kind.begin(), kind.end(), kind.begin(), g_ascii_tolower);
            WebPage page{std::move(step.body), NameFor(address, kind), StatusProblem(status, host)};
            Decode(page.bytes, kind, page.name);
            return page;
        }
        std::string target = next;
        if (std::string problem = RefusalOf(address, target, host); !problem.empty())
            return {{}, {}, std::move(problem)};
        address = std::move(target);
    }
    return {{}, {}, first + " leads on and on to other pages."};
}
