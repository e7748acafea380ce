#include "app/words/keep_pronunciations.h"

#include "gui/windows/message_box.h"

std::string ReadingProblem(const PronunciationList& list) {
    return list.error == 0 ? ""
                           : "The list of words said differently cannot be read, so it is left as "
                             "it is: " +
                                 OwnPronunciationsPath() + ": " + g_strerror(list.error) + ".";
}

bool KeepPronunciations(GtkWidget* parent, const PronunciationList& list) {
    const int error = StoreOwnPronunciations(list);
    if (error != 0)
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The word could not be kept.", g_strerror(error));
    return error == 0;
}
