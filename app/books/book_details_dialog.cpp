#include "app/books/book_details_dialog.h"

#include "books/book_cover.h"
#include "foundation/files/file.h"
#include "foundation/files/path_text.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kTitleEntry = 101;
constexpr int kAuthor = 103;
constexpr int kLanguage = 105;
constexpr int kCover = 107;
constexpr int kChooseCover = 109;
constexpr int kNoCover = 110;
constexpr int kDocumentsCover = 111;
constexpr int kChapters = 112;  // its scrolled window is the next number
constexpr int kDetailsWidth = 460;

void DlgGenBookDetails(LDialogGenContext& context) {
    context.SetWidth(kDetailsWidth);
    context.AddInput(kTitleEntry, "&Title:");
    context.AddInput(kAuthor, "&Author:");
    context.AddInput(kLanguage, "&Language (en, de-AT):");
    context.AddInput(kCover, "Cover:");
    context.StartHBox();
    context.AddButton(kChooseCover, "&Choose Cover...");
    context.AddButton(kDocumentsCover, "The &Document's");
    context.AddButton(kNoCover, "&None");
    context.EndHBox();
    context.AddGroup(-1, "Chapters");
    context.AddList(kChapters, LRows{5}, "Chapters");
    context.GroupEnd();
    context.AddOkCancelHelp(kOkCancelHelp);
}

}  // namespace

bool BookDetailsDlg::Run(GtkWidget* parent) {
    return Open(parent, {"About This Book", false, DlgGenBookDetails}, true);
}

void BookDetailsDlg::InitDialog() {
    SetText(kTitleEntry, entry_.plan.title.c_str());
    SetText(kAuthor, entry_.plan.author.c_str());
    SetText(kLanguage, entry_.plan.language.c_str());
    SetTextEditable(kCover, false);
    static constexpr LListColumn kColumns[] = {{"Number", 15}, {"Title", 82}};
    LVInit(kChapters, {LListColumns::kPercent, kColumns});
    SetAccessibleName(GetControlByID(kChapters), "Chapters");
    int number = 0;
    for (const BookChapter& chapter : entry_.plan.chapters)
        LVAddRow(kChapters, {std::to_string(++number).c_str(), chapter.title.c_str()});
    LVSetCurSel(kChapters, 0);
    cover_ = entry_.plan.cover;
    coverPath_ = entry_.coverPath;
    ShowCover();
    FocusControl(kTitleEntry);
}

void BookDetailsDlg::ShowCover() {
    const std::string size = ", " + std::to_string((cover_.size() + 999) / 1000) + " kB";
    const std::string shown = cover_.empty()        ? "none"
                              : !coverPath_.empty() ? FileOfPath(coverPath_) + size
                                                    : "the document's" + size;
    SetText(kCover, shown.c_str());
    TellScreenReader(Widget(), ("Cover: " + shown).c_str());
}

void BookDetailsDlg::EnableControls() {
    EnableControl(kNoCover, !cover_.empty());
    EnableControl(kDocumentsCover,
                  !entry_.documentsCover.empty() && cover_ != entry_.documentsCover);
}

void BookDetailsDlg::Command(int command) {
    if (command == kChooseCover) {
        ChooseCover();
    } else if (command == kNoCover || command == kDocumentsCover) {
        cover_ = command == kNoCover ? "" : entry_.documentsCover;
        coverPath_.clear();
        ShowCover();
        FocusControl(kChooseCover);  // the button that was pressed is off now
    }
}

void BookDetailsDlg::ChooseCover() {
    static constexpr char kPictures[] =
        "Pictures\0*.png;*.jpg;*.jpeg;*.gif;*.PNG;*.JPG;*.JPEG;*.GIF\0";
    std::string path;
    std::string folder;
    if (!LFile::BrowseReadFilePath(Widget(), path, "Choose Cover", folder, kPictures))
        return;
    std::string problem;
    std::string cover = ReadCover(path, problem);
    if (!problem.empty()) {
        SetControlInvalid(kChooseCover, problem.c_str(), "Cover");
        return;
    }
    cover_ = std::move(cover);
    coverPath_ = path;
    ShowCover();
}

bool BookDetailsDlg::CmOk() {
    const std::string title = AsTag(GetText(kTitleEntry));
    if (title.empty()) {
        SetControlInvalid(kTitleEntry, "A book needs a title; its file is named by it.", "Title");
        return false;
    }
    BookPlan& plan = entry_.plan;
    TitleBook(plan, title);
    plan.author = AsTag(GetText(kAuthor));
    plan.language = AsTag(GetText(kLanguage));
    plan.cover = cover_;
    entry_.coverPath = coverPath_;
    return true;
}
