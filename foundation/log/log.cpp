#include "foundation/log/log.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cstdio>
#include <string_view>

#include "foundation/files/file.h"
#include "foundation/files/file_io.h"
#include "foundation/files/flock_timed.h"
#include "foundation/files/store_file.h"

namespace {

constexpr int kLogLockMilliseconds = 500;
constexpr std::size_t kLineBytes = 8192;

std::time_t WallClock() {
    return std::time(nullptr);
}

// For its user alone: what is logged may tell what was read. A file that cannot be opened takes
// nothing; one that cannot be locked is written all the same, and appending keeps that line whole
// too wherever the file system is local.
void AppendToFile(const char* path, std::string_view text) {
    const UniqueFd file = OpenStoreFile(path, O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (!file.IsOpen())
        return;
    LockInTurn(file.Get(), LOCK_EX | LOCK_NB, kLogLockMilliseconds);
    WriteFully(file.Get(), text);
}

}  // namespace

LLog::LLog(const char* folder, Clock clock) : clock_(clock ? clock : &WallClock) {
    CopyText(folder_, folder);
}

void LLog::Refresh(std::time_t now) {
    if (static_cast<std::int32_t>(now) == lastSecond_)
        return;
    lastSecond_ = static_cast<std::int32_t>(now);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::snprintf(timeText_, sizeof timeText_, "%.2d:%.2d:%.2d", local.tm_hour, local.tm_min,
                  local.tm_sec);
    char name[kTextBufferSize];
    std::snprintf(name, sizeof name, "%.4d-%.2d-%.2d Lectora Log.txt", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday);
    CopyText(filePath_, folder_);
    LFile::_FilePathCat(filePath_, name);
}

void LLog::Log(const char* message, std::uint8_t level) {
    char timeText[sizeof timeText_];
    char path[sizeof filePath_];
    {
        const std::lock_guard lock(mutex_);
        Refresh(clock_());
        CopyText(timeText, timeText_);
        CopyText(path, filePath_);
    }
    char line[kLineBytes];
    std::snprintf(line, sizeof line, "%s %s\r\n", timeText, message);
    AppendToFile(path, line);
    if (statusWindow_)
        statusWindow_->DisplayStatus(timeText, message, level);
}

void LLog::Log(const char* text, int number, std::uint8_t level) {
    char message[kTextBufferSize];
    std::snprintf(message, sizeof message, "%s%d", text, number);
    Log(message, level);
}

void LLog::Log(const char* text, const char* more, std::uint8_t level) {
    char message[kTextBufferSize];
    std::snprintf(message, sizeof message, "%s%s", text, more);
    Log(message, level);
}

void LLog::LogFileFromPath(const char* prefix, const char* path, std::uint8_t level) {
    char file[kTextBufferSize];
    LFile::_GetFileFromPath(file, path);
    Log(prefix, file, level);
}

void LLog::Write(const char* fileName, const char* text) const {
    char path[kTextBufferSize];
    CopyText(path, folder_);
    LFile::_FilePathCat(path, fileName);
    AppendToFile(path, text);
}

void LLog::WriteMonthly(std::time_t time, const char* name, const char* text) const {
    std::tm local{};
    ::localtime_r(&time, &local);
    char fileName[kTextBufferSize];
    std::snprintf(fileName, sizeof fileName, "20%.2d-%.2d %s", local.tm_year % 100,
                  local.tm_mon + 1, name);
    Write(fileName, text);
}
