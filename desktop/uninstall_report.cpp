#include "desktop/uninstall_report.h"

#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "foundation/files/text_buffer.h"
#include "foundation/network/resolve.h"
#include "foundation/network/tcp_steps.h"
#include "foundation/settings/hosts.h"

const LUninstallComment gUninstallComments[] = {
    {"NotUsed", "I don't use it very often", nullptr,
     "A full list of our products can be found at the below website. You may find another product "
     "that is more suitable for your needs.",
     ""},
    {"Problem", "I have problems using it",
     "Please tell us what problems do you have had? [Optional]", nullptr, nullptr},
    {"Features", "It doesn't have features that I want", nullptr,
     "We make many similar programs. Please open the website below for a list. It may help you to "
     "find another product that is more suitable for your needs.",
     "software"},
    {"Prefer", "I prefer another product",
     "Please tell us why you prefer the other product? [Optional]", nullptr, nullptr},
    {"Other", "Other", nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

namespace {

constexpr std::size_t kLongestEncoded = kTextBufferSize - 1;
constexpr std::size_t kLongestBody = 2047;

std::string PercentEncoded(std::string_view text) {
    constexpr std::string_view reserved = "%:/?#[]@!$&'()*+,;=";
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte > 32 && byte < 128 && reserved.find(character) == std::string_view::npos)
            encoded += character;
        else
            encoded.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return encoded.substr(0, kLongestEncoded);
}

}  // namespace

std::string UninstallReportBody(int selectedItem, const std::string& typed) {
    if (selectedItem < 0 || selectedItem >= static_cast<int>(std::size(gUninstallComments)))
        return std::string();
    const LUninstallComment& row = gUninstallComments[selectedItem];
    if (row.key == nullptr)
        return std::string();
    const std::string comment = row.advice ? std::string() : typed;
    if (row.advice == nullptr && comment.empty() && std::strcmp(row.key, "Other") == 0)
        return std::string();
    const std::string body = "software=Lectora&version=1.05&report=UNINSTALL&text=" + comment +
                             "-" + PercentEncoded(comment);
    return body.substr(0, kLongestBody);
}

std::string UninstallReportHeader(const std::string& host, const std::string& body) {
    return std::string("POST ") + kReportPath + " HTTP/1.0\r\nHost: " + host +
           "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n";
}

void ProcessUninstallReport(LProgress& progress, const std::string& body) {
    const std::string host = ReportHost();
    std::vector<LIPAddressWithPort> addresses;
    if (body.empty() || IsReservedHost(host) ||
        ProcessResolve(progress, SplitHostPort(host, 80), kReportTimeout, addresses) !=
            kProcessDone)
        return;
    LIPSocketTCP socket;
    for (const LIPAddressWithPort& address : addresses) {
        const LProcessResult result = ProcessConnect(progress, socket, address, kReportTimeout);
        if (result == kProcessStopped)
            return;
        if (result == kProcessDone)
            break;
    }
    if (!socket.IsOpen())
        return;
    const std::string header = UninstallReportHeader(host, body);
    if (ProcessSend(progress, socket, header.data(), static_cast<unsigned int>(header.size()),
                    kReportTimeout) == kProcessDone)
        ProcessSend(progress, socket, body.data(), static_cast<unsigned int>(body.size()),
                    kReportTimeout);
}
