#include "app/words/keep_pronunciations.h"

#include "gui/windows/message_box.h"

bool KeepPronunciations(GtkWidget* parent, const std::vector<Pronunciation>& entries) {
    const int error = StoreOwnPronunciations(entries);
    if (error != 0)
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The word could not be kept.", g_strerror(error));
    return error == 0;
}
