// The day-file text log.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <ctime>
#include <mutex>

#include "foundation/files/text_buffer.h"

// What the log asks of a status window. Called from any thread; copies both texts (259 characters
// each) and shows them later on the GUI thread.
class LStatusWindowBase {
public:
    virtual void DisplayStatus(const char* timeText, const char* message, std::uint8_t level) = 0;

protected:
    ~LStatusWindowBase() = default;
};

enum LLogLevel : std::uint8_t {
    kLogPlain = 0,
    kLogError = 1,
    kLogWarning = 2,
    kLogInformation = 3
};

// Appends lines "HH:MM:SS message\r\n", cut to 8191 characters, to the file of the local day in the
// log folder. Safe from any thread and beside other processes; a file that cannot be written loses
// its lines silently.
class LLog {
public:
    using Clock = std::time_t (*)();

    // folder is cut to 259 characters; one of the program's own is made by the first line. clock
    // gives wall-clock seconds.
    explicit LLog(const char* folder, Clock clock = nullptr);
    LLog(const LLog&) = delete;
    LLog& operator=(const LLog&) = delete;

    void Log(const char* message, std::uint8_t level);
    void Log(const char* text, int number,
             std::uint8_t level);  // both joined, cut to 259 characters
    void Log(const char* text, const char* more, std::uint8_t level);
    void LogFileFromPath(const char* prefix, const char* path,
                         std::uint8_t level);  // prefix and file name

    // Appends the text as it is to a file in the log folder.
    void Write(const char* fileName, const char* text) const;
    // The same to "YYYY-MM NAME" of the time's local month; the name always begins with this
    // century.
    void WriteMonthly(std::time_t time, const char* name, const char* text) const;

    const char* Folder() const { return folder_; }
    // Set before other threads log; the window must outlive that. Null: none.
    void SetStatusWindow(LStatusWindowBase* window) { statusWindow_ = window; }

private:
    void Refresh(std::time_t now);  // mutex held

    char folder_[kTextBufferSize] = {};
    Clock clock_;
    LStatusWindowBase* statusWindow_ = nullptr;  // borrowed
    std::mutex mutex_;                           // guards the three below
    std::int32_t lastSecond_ = 0;
    char timeText_[32] = {};
    char filePath_[kTextBufferSize] = {};
};

// --- The program's own log (log_functions.cpp), in the "Logs" folder of the user's data.
extern LLog gLLog;

// Lines to gLLog; the name gives the level. Numbers and second texts are joined to the text, cut to
// 259 characters.
void LOG(const char* text);
void LOG(const char* text, int number);
void LOG(const char* text, const char* more);
void LOGERROR(const char* text);
void LOGERROR(const char* text, int number);
void LOGERROR(const char* text, const char* more);
void LOGWARN(const char* text);
void LOGWARN(const char* text, int number);
void LOGWARN(const char* text, const char* more);
void LOGINFO(const char* text);
void LOGINFO(const char* text, int number);
void LOGINFO(const char* text, const char* more);

// As printf, cut to 511 characters.
void LOGVF(const char* format, std::uint8_t level, std::va_list arguments);
void LOGF(const char* format, ...);
void LOGERRORF(const char* format, ...);
void LOGWARNF(const char* format, ...);
void LOGINFOF(const char* format, ...);

void LLogWrite(const char* fileName, const char* text);
void LLogMonthlyWrite(std::time_t time, const char* name, const char* text);
