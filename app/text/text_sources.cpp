#include "app/text/text_sources.h"

#include <gdk/gdkkeysyms.h>

#include <optional>
#include <utility>

#include "app/commands/command_numbers.h"
#include "app/settings_keys.h"
#include "app/text/recent_files.h"
#include "documents/web_address.h"
#include "foundation/files/file.h"
#include "foundation/white_space.h"
#include "gui/icon_numbers.h"
#include "gui/windows/message_box.h"

TextSources::TextSources(LMainWindow& window, CommandTurn& turn, TextPane& text, Narrator& narrator,
                         CommandPlaces& places, Listener listener)
    : window_(window),
      turn_(turn),
      text_(text),
      narrator_(narrator),
      listener_(std::move(listener)),
      selection_(listener_.changed),
      recent_(
          window, places, narrator,
          {.labelOf = listener_.labelOf, .open = [this](const auto& path) { LoadFile(path); }}) {}

void TextSources::AddCommands(CommandSet& commands) {
    static constexpr CommandRow<TextSources> kRows[] = {
        {{.number = kUpdateFromSelection,
          .label = "Update From Clip&board",
          .name = "Update from clipboard",
          .tip = "Copy the selection or clipboard to the Lectora window",
          .icon = kUpdateTextIcon,
          .keys = {kKeyControl | GDK_B},
          .needs = kNeedsSelection},
         &TextSources::CmCopyFromClipboard},
        {{.number = kLoadFile,
          .label = "&Load Text From File",
          .name = "Update text from file",
          .tip = "Load contents from text file to Lectora window",
          .keys = {kKeyControl | GDK_O}},
         &TextSources::CmOpenFile},
        {{.number = kWholePage,
          .label = "&Whole Page",
          .keys = {kKeyControl | kKeyShift | GDK_W},
          .needs = kNeedsArticle},
         &TextSources::CmWholePage},
    };
    commands.Add(*this, kRows);
    recent_.AddCommands(commands);
}

void TextSources::Fetch(std::function<void(const std::string& text)> then,
                        SelectionWatch::From from) {
    auto taken = [this, then = std::move(then)](const std::string& text) {
        // A dialog that came up meanwhile has the text.
        if (window_.IsOpen() && !turn_.IsTaken())
            then(text);
    };
    const bool isAsked = selection_.Fetch(std::move(taken), from);
    if (!isAsked)
        window_.TellStatusText("Another program is still being asked for its selection.");
}

void TextSources::UpdateThen(std::function<void()> then) {
    Fetch([this, then = std::move(then)](const std::string& text) {
        if (Take(text))
            then();
    });
}

bool TextSources::Take(const std::string& text, FileFrom from) {
    if (IsWebAddress(text))
        return LoadFile(std::string(Trimmed(text)), from);
    if (!text.empty())
        text_.TakeFromProgram(text);
    return true;
}

void TextSources::CmCopyFromClipboard() {
    UpdateThen(listener_.changed);
}

bool TextSources::OpenFile() {
    const std::string path = ChooseFile();
    return !path.empty() && LoadFile(path);
}

std::string TextSources::ChooseFile() {
    std::string path;
    std::string folder = kOpenFolderSetting.Get();
    static constexpr char kFilters[] =
        "Text Documents\0*.txt;*.text;*.TXT;*\0"
        "Web Pages\0*.html;*.htm;*.xhtml;*.HTML;*.HTM\0"
        "Books\0*.epub;*.fb2;*.mobi;*.azw3;*.azw;*.prc;*.htmlz;*.EPUB;*.FB2;*.MOBI;*.AZW3\0"
        "Word Processor Documents\0*.odt;*.fodt;*.docx;*.rtf;*.ODT;*.DOCX;*.RTF\0"
        "Presentations\0*.odp;*.pptx;*.ODP;*.PPTX\0"
        "PDF and DjVu Documents\0*.pdf;*.djvu;*.PDF;*.DJVU\0"
        "Pictures of Text\0*.png;*.jpg;*.jpeg;*.tif;*.tiff;*.webp;*.PNG;*.JPG;*.TIF\0"
        "Mail and Markdown\0*.eml;*.md;*.EML;*.MD\0";
    if (!LFile::BrowseReadFilePath(window_.Widget(), path, "Locate File to Read Text", folder,
                                   kFilters))
        return "";
    KeepFolder(kOpenFolderSetting, folder);
    return window_.IsOpen() ? path : "";
}

bool TextSources::LoadFile(const std::string& path, FileFrom from, bool isWholePage) {
    std::optional<LoadedDocument> loaded;
    {
        const CommandTurn::Hold hold(turn_);
        loaded = LoadBeginningUnderDialog(window_.Widget(), path.c_str(), isWholePage);
    }
    // The window may have been closed meanwhile.
    if (!window_.IsOpen())
        return false;
    if (!loaded) {
        narrator_.Waiting().SetAside();
        return false;
    }
    const Document& document = loaded->document;
    if (!document.problem.empty()) {
        TellUnreadable(path, document.problem, from);
        return false;
    }
    isTakingFromElsewhere_ = from == FileFrom::kElsewhere;
    text_.TakeFile(document, path, loaded->rest != nullptr);
    isTakingFromElsewhere_ = false;
    DropRest();
    rest_ = std::move(loaded->rest);
    restOf_ = text_.Generation();
    if (rest_)
        rest_->Follow([this](const auto&... more) { EvMore(more...); });
    NoteFile(path);
    if (rest_)
        window_.TellStatusText("The first page is here; the others come while it is read.");
    if (from == FileFrom::kUser)
        listener_.opened();
    if (std::exchange(isUnreadableTold_, false))
        listener_.readable();
    if (const std::string note = rest_ ? "" : NoteOn(document); !note.empty())
        window_.TellStatusText(note.c_str());
    return true;
}

void TextSources::DropRest() {
    if (!rest_)
        return;
    rest_.reset();
    narrator_.Grow("", true);
}

void TextSources::EvMore(const Document& more, bool isAll) {
    if (!window_.IsOpen() || IsRestOfAnother()) {
        DropRest();
        return;
    }
    if (isAll)
        rest_.reset();
    const bool isPart = !isAll || !more.problem.empty();
    text_.TakeMore(more, isPart);
    listener_.grown(more.text, isAll);
    if (!isAll)
        return;
    const std::string note = isPart ? "The other pages are missing: " + more.problem
                                    : "All " + std::to_string(text_.Structure().PageCount()) +
                                          " pages are here. " + NoteOn(more);
    window_.TellStatusText(note.c_str());
}

bool TextSources::AwaitAll() {
    const CommandTurn::Hold hold(turn_);
    if (IsComing() && (!rest_->Await(window_.Widget()) || !window_.IsOpen()))
        return false;
    return !text_.Structure().IsPart() || WantsPart();
}

// Told in a box: what is saved may be opened where nobody knows that there was more.
bool TextSources::WantsPart() {
    const std::string what = "Only the first " + std::to_string(text_.Structure().PageCount()) +
                             " pages of the document are here.";
    return MessageBoxRun(window_.Widget(), GTK_MESSAGE_WARNING, GTK_BUTTONS_YES_NO, "Lectora",
                         what.c_str(), "Do you want to save these pages?") == GTK_RESPONSE_YES &&
           window_.IsOpen();
}

void TextSources::TellIfPart() {
    if (text_.Structure().IsPart() && !IsComing())
        window_.TellStatusText(
            "Only the first pages of the document are here. Open it again for the others.");
}

// Who chose the file sees a box.
void TextSources::TellUnreadable(const std::string& path, const std::string& problem,
                                 FileFrom from) {
    if (from == FileFrom::kUser) {
        MessageBoxRun(window_.Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Cannot read the file.", problem.c_str());
        return;
    }
    listener_.unreadable("Cannot read " + path + ": " + problem);
    isUnreadableTold_ = true;
}

// What surrounds the article of the page that is there; a reading goes on.
void TextSources::CmWholePage() {
    LoadFile(std::string(text_.File()), FileFrom::kUser, true);
}

// What the user writes is not replaced: by a file that still waits, or by a selection.
void TextSources::EvTextChanged() {
    if (!isTakingFromElsewhere_)
        narrator_.Waiting().SetAside();
    selection_.DropFetch();
    // Another text, or none: what would come has no place in it.
    if (IsRestOfAnother())
        DropRest();
}

void TextSources::WasSavedAs(const std::string& path) {
    text_.WasSavedAs(path);
    NoteFile(path);
}

void TextSources::NoteFile(const std::string& path) {
    RecentFiles::Add(path);
    listener_.filed();
    recent_.ShowSoon();
}
