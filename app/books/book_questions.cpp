#include "app/books/book_questions.h"

#include <sys/statvfs.h>

#include <span>

#include "app/books/book_words.h"
#include "gui/windows/message_box.h"

std::optional<double> FreeBytes(const std::string& folder) {
    struct statvfs disk = {};
    if (::statvfs(folder.c_str(), &disk) != 0)
        return std::nullopt;
    return static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
}

bool AsksOfRoom(GtkWidget* parent, const char* title, const std::string& folder,
                const BookEstimate& needed) {
    const auto bytes = static_cast<double>(needed.bytes + needed.bytesMeanwhile);
    const std::optional<double> free = FreeBytes(folder);
    if (!free || bytes <= *free)
        return true;
    const std::string details = "Making them takes about " + SizeText(bytes) + ", and " +
                                SizeText(*free) + " are free in " + folder +
                                ". Finished chapters are kept when the disk is full.";
    return MessageBoxRun(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, title,
                         "The disk is too small for these books. Start all the same?",
                         details.c_str()) == GTK_RESPONSE_YES;
}

// What is finished takes hours to make anew.
bool AsksOfUnfinished(GtkWidget* parent, const char* title, const BegunOtherwise& books,
                      bool& asBegun) {
    enum Response : int { kGoOn, kAnew, kNeither };
    static constexpr LBoxButton kButtons[] = {
        {"_Go On as Begun", kGoOn}, {"Begin _Anew", kAnew}, {"_Cancel", kNeither}};
    static constexpr LBoxButton kLossButtons[] = {{"_Cancel", kNeither}, {"Begin _Anew", kAnew}};
    if (!books.canGoOn.empty()) {
        const std::string details =
            books.canGoOn + "\n\nBegun anew, they lose what is finished of them.";
        const int response = MessageBoxRun(
            parent, GTK_MESSAGE_QUESTION, kButtons, title,
            "Unfinished books were begun otherwise than you have chosen now.", details.c_str());
        if (response != kGoOn && response != kAnew)
            return false;
        asBegun = response == kGoOn;
    }
    return books.cannot.empty() ||
           MessageBoxRun(parent, GTK_MESSAGE_QUESTION, kLossButtons, title,
                         "Unfinished books cannot go on, and lose what is finished of them.",
                         books.cannot.c_str()) == kAnew;
}
