// How texts come into the main window, and out of it.
#include <utility>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/saving/save_text.h"
#include "app/saving/suggested_name.h"
#include "app/settings_keys.h"
#include "app/text/document_loading.h"
#include "app/text/recent_files.h"
#include "documents/small_texts.h"
#include "documents/web_address.h"
#include "foundation/files/file.h"
#include "gui/windows/message_box.h"

void MainDialog::FetchText(std::function<void(const std::string& text)> then,
                           SelectionWatch::From from) {
    auto taken = [this, then = std::move(then)](const std::string& text) {
        // A dialog that came up meanwhile has the text.
        if (IsOpen() && !saving_ && !loading_)
            then(text);
    };
    const bool isAsked = selection_.Fetch(std::move(taken), from);
    if (!isAsked)
        TellStatusText("Another program is still being asked for its selection.");
}

// Where nothing is selected or copied, the command acts on the text that is there.
void MainDialog::UpdateThen(void (MainDialog::*command)()) {
    FetchText([this, command](const std::string& text) {
        if (IsWebAddress(text)) {
            if (!LoadFile(std::string(Trimmed(text)), FileFrom::kUser))
                return;
        } else if (!text.empty()) {
            text_.TakeFromProgram(text);
        }
        (this->*command)();
    });
}

void MainDialog::CmCopyFromClipboard() {
    UpdateThen(&MainDialog::EnableControls);
}

void MainDialog::CmOpenFile() {
    OpenFile();
}

bool MainDialog::OpenFile() {
    std::string path;
    std::string folder = kOpenFolderSetting.Get();
    static constexpr char kFilters[] =
        "Text Documents\0*.txt;*.text;*.TXT;*\0"
        "Web Pages\0*.html;*.htm;*.xhtml;*.HTML;*.HTM\0"
        "Books\0*.epub;*.fb2;*.EPUB;*.FB2\0"
        "Word Processor Documents\0*.odt;*.fodt;*.docx;*.rtf;*.ODT;*.DOCX;*.RTF\0"
        "Presentations\0*.odp;*.pptx;*.ODP;*.PPTX\0"
        "PDF and DjVu Documents\0*.pdf;*.djvu;*.PDF;*.DJVU\0"
        "Pictures of Text\0*.png;*.jpg;*.jpeg;*.tif;*.tiff;*.webp;*.PNG;*.JPG;*.TIF\0"
        "Mail and Markdown\0*.eml;*.md;*.EML;*.MD\0";
    if (!LFile::BrowseReadFilePath(Widget(), path, "Locate File to Read Text", folder, kFilters))
        return false;
    KeepFolder(kOpenFolderSetting, folder);
    return IsOpen() && LoadFile(path, FileFrom::kUser);
}

void MainDialog::CmSaveTextAs() {
    const std::string text = text_.Text();
    const std::string path = SaveTextAs(Widget(), text, SuggestedName(text, text_.File()));
    if (path.empty() || !IsOpen())
        return;
    text_.WasSavedAs(path);
    RecentFiles::Add(path);
    ShowTitle();
    ListRecentFilesSoon();
    TellStatusText(("Saved as " + path).c_str());
}

// Who chose the file sees a box. Nobody may be there to see what comes from elsewhere.
void MainDialog::TellUnreadable(const std::string& path, const std::string& problem,
                                FileFrom from) {
    if (from == FileFrom::kUser) {
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Cannot read the file.", problem.c_str());
        return;
    }
    TellOutside("Cannot read the file.", "Cannot read " + path + ": " + problem);
    unreadableIsTold_ = true;
}

void MainDialog::TellOutside(const char* summary, const std::string& note) {
    if (!presence_.IsOnScreen())
        Notify(summary, note.c_str(), [this] { CmOpen(); });
    TellStatusText(note.c_str());
}

bool MainDialog::LoadFile(const std::string& path, FileFrom from, bool isWholePage) {
    loading_ = true;
    const std::optional<Document> document =
        LoadDocumentUnderDialog(Widget(), path.c_str(), isWholePage);
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
        TellUnreadable(path, document->problem, from);
        return false;
    }
    settingWaitingFile_ = from == FileFrom::kArguments;
    text_.TakeFile(*document, path);
    settingWaitingFile_ = false;
    ShowTitle();
    if (from == FileFrom::kUser)
        keeper_.TextCame();
    if (std::exchange(unreadableIsTold_, false))
        SetStatusText(kBanner);
    if (const std::string note = NoteOn(*document); !note.empty())
        TellStatusText(note.c_str());
    RecentFiles::Add(path);
    ListRecentFilesSoon();
    return true;
}

// What surrounds the article of the page that is there; a reading goes on.
void MainDialog::CmWholePage() {
    LoadFile(std::string(text_.File()), FileFrom::kUser, true);
}
