#include "app/reading/kept_fields.h"

#include <algorithm>
#include <charconv>

#include "foundation/files/private_file.h"

namespace {

constexpr std::size_t kMostFieldBytes = 1 << 20;

}  // namespace

std::vector<std::string> ReadKeptFields(const char* name) {
    std::vector<std::string> fields;
    std::string content;
    if (!ReadPrivateFile(name, kMostFieldBytes, content))
        return fields;
    for (std::size_t at = 0; at < content.size();) {
        const std::size_t end = std::min(content.find('\0', at), content.size());
        fields.push_back(content.substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

int WriteKeptFields(const char* name, const std::vector<std::string>& fields) {
    std::string content;
    for (const std::string& field : fields)
        content.append(field).push_back('\0');
    return WritePrivateFile(name, content);
}

std::size_t NumberOfField(const std::string& field) {
    std::size_t number = 0;
    std::from_chars(field.data(), field.data() + field.size(), number);
    return number;
}
