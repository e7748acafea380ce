#include <cstdio>
#include <string>

#include "foundation/files/settings_folders.h"
#include "foundation/log/log.h"

namespace {

std::string LogFolder() {
    return UserSettingsFolder() + "/Logs";
}

}  // namespace

LLog gLLog(LogFolder().c_str());

void LOG(const char* text) {
    gLLog.Log(text, kLogPlain);
}
void LOG(const char* text, int number) {
    gLLog.Log(text, number, kLogPlain);
}
void LOG(const char* text, const char* more) {
    gLLog.Log(text, more, kLogPlain);
}

void LOGERROR(const char* text) {
    gLLog.Log(text, kLogError);
}
void LOGERROR(const char* text, int number) {
    gLLog.Log(text, number, kLogError);
}
void LOGERROR(const char* text, const char* more) {
    gLLog.Log(text, more, kLogError);
}

void LOGWARN(const char* text) {
    gLLog.Log(text, kLogWarning);
}
void LOGWARN(const char* text, int number) {
    gLLog.Log(text, number, kLogWarning);
}
void LOGWARN(const char* text, const char* more) {
    gLLog.Log(text, more, kLogWarning);
}

void LOGINFO(const char* text) {
    gLLog.Log(text, kLogInformation);
}
void LOGINFO(const char* text, int number) {
    gLLog.Log(text, number, kLogInformation);
}
void LOGINFO(const char* text, const char* more) {
    gLLog.Log(text, more, kLogInformation);
}

void LOGVF(const char* format, std::uint8_t level, std::va_list arguments) {
    char message[512];
    std::vsnprintf(message, sizeof message, format, arguments);
    gLLog.Log(message, level);
}

void LOGF(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LOGVF(format, kLogPlain, arguments);
    va_end(arguments);
}

void LOGERRORF(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LOGVF(format, kLogError, arguments);
    va_end(arguments);
}

void LOGWARNF(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LOGVF(format, kLogWarning, arguments);
    va_end(arguments);
}

void LOGINFOF(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LOGVF(format, kLogInformation, arguments);
    va_end(arguments);
}

void LLogWrite(const char* fileName, const char* text) {
    gLLog.Write(fileName, text);
}

void LLogMonthlyWrite(std::time_t time, const char* name, const char* text) {
    gLLog.WriteMonthly(time, name, text);
}
