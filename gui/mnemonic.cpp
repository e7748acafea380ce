#include "gui/mnemonic.h"

#include "gui/display_text.h"

std::string MnemonicText(const char* text) {
    std::string out;
    for (const char* c = text; *c != '\0'; ++c) {
        if (*c == '_') {
            out += "__";
        } else if (*c == '&' && c[1] == '&') {
            out += *c++;
        } else {
            out += *c == '&' ? '_' : *c;
        }
    }
    return DisplayText(out);
}

std::string WithoutMnemonic(const char* text) {
    std::string out;
    for (const char* c = text; *c != '\0'; ++c) {
        if (*c != '&')
            out += *c;
        else if (c[1] == '&')
            out += *c++;
    }
    return DisplayText(out);
}
