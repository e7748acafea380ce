// How texts come into the main window.
#include "app/commands/command_numbers.h"
#include "app/document_loading.h"
#include "app/main_dialog.h"
#include "app/recent_files.h"
#include "app/settings_keys.h"
#include "foundation/file.h"
#include "foundation/owned_text.h"
#include "gui/message_box.h"

std::string MainDialog::SelectedText() {
    for (const GdkAtom selection : {GDK_SELECTION_PRIMARY, GDK_SELECTION_CLIPBOARD}) {
        const OwnedText text(gtk_clipboard_wait_for_text(gtk_clipboard_get(selection)));
        if (text && *text != '\0')
            return text.get();
    }
    return "";
}

void MainDialog::CmCopyFromClipboard() {
    const std::string text = SelectedText();
    if (!text.empty())
        text_.Replace(text);
}

void MainDialog::CmOpenFile() {
    char path[kTextBufferSize] = "";
    char folder[kTextBufferSize];
    CopyText(folder, kOpenFolderSetting.Get());
    static constexpr char kFilter[] =
        "Text Documents\0*.txt;*.text;*.TXT;*\0"
        "Web Pages\0*.html;*.htm;*.xhtml;*.HTML;*.HTM\0"
        "Books\0*.epub;*.fb2;*.EPUB;*.FB2\0"
        "Word Processor Documents\0*.odt;*.fodt;*.docx;*.ODT;*.DOCX\0"
        "Presentations\0*.odp;*.pptx;*.ODP;*.PPTX\0"
        "PDF Documents\0*.pdf;*.PDF\0";
    if (!LFile::BrowseReadFilePath(Widget(), path, "Locate File to Read Text", folder, kFilter))
        return;
    kOpenFolderSetting.Set(folder);
    LoadFile(path, FileFrom::kUser);
}

bool MainDialog::LoadFile(const char* path, FileFrom from) {
    loading_ = true;
    const std::optional<Document> document = LoadDocumentUnderDialog(Widget(), path);
    loading_ = false;
    // The window may have been closed meanwhile.
    if (!IsOpen())
        return false;
    narrator_.ContinueQueueSoon();
    if (!document) {
        narrator_.ForgetQueue();
        return false;
    }
    if (!document->problem.empty()) {
        if (from == FileFrom::kUser)
            MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                          "Cannot read the file.", document->problem.c_str());
        else
            TellStatusText(document->problem.c_str());
        return false;
    }
    settingWaitingFile_ = from == FileFrom::kArguments;
    text_.Replace(document->text);
    settingWaitingFile_ = false;
    if (!document->remark.empty())
        TellStatusText(document->remark.c_str());
    RecentFiles::Add(path);
    ListRecentFilesSoon();
    return true;
}
