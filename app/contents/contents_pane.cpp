#include "app/contents/contents_pane.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "app/commands/command_numbers.h"
#include "app/contents/page_dialog.h"
#include "app/settings_keys.h"

namespace {

// One entry is what the document is called, and no way to anywhere.
constexpr std::size_t kFewestEntries = 2;

}  // namespace

ContentsPane::ContentsPane(Parts parts)
    : parts_(std::move(parts)),
      tree_([this](std::size_t entry) { GoTo(entry); }),
      news_(parts_.narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {
    // Within a change of the text there is no room for another layout.
    parts_.text.Structure().Tell([this] {
        isOurs_ = false;
        filling_.Start(0, [this] { TakeStructure(); });
    });
}

void ContentsPane::AddCommands() {
    static constexpr CommandRow<ContentsPane> kRows[] = {
        {{.number = kShowContents, .label = "Show C&ontents"}, &ContentsPane::CmShow},
        {{.number = kGoToContents,
          .label = "Go to &Contents",
          .keys = {GDK_F6},
          .needs = kNeedsContents},
         &ContentsPane::CmGoTo},
        {{.number = kGoToPage,
          .label = "&Go to Page...",
          .keys = {kKeyControl | GDK_G},
          .needs = kNeedsPages},
         &ContentsPane::CmGoToPage},
    };
    parts_.commands.Add(*this, kRows);
    parts_.commands.Check(kShowContents, kShowContentsSetting.Get());
}

CommandNeeds ContentsPane::Available() const {
    return (hasContents_ ? kNeedsContents : 0) |
           (parts_.text.Structure().PageCount() > 1 ? kNeedsPages : 0);
}

bool ContentsPane::IsWanted() const {
    return hasContents_ && kShowContentsSetting.Get();
}

void ContentsPane::TakeStructure() {
    const std::vector<OutlineEntry>& outline = parts_.text.Structure().Outline();
    hasContents_ = outline.size() >= kFewestEntries;
    tree_.Fill(hasContents_ ? outline : std::vector<OutlineEntry>());
    parts_.reshaped();
    parts_.commands.Refresh();
}

void ContentsPane::Hear(const ReadingNews& news) {
    if (news.HasBegun())
        isOurs_ = parts_.isWhole();
    if (!news.IsNew() && !news.stretch)
        return;
    std::optional<std::size_t> heard;
    if (isOurs_ && IsReading(news.state)) {
        const std::vector<std::size_t>& places = parts_.narrator.Headings();
        const auto behind = std::ranges::upper_bound(
            places, news.stretch ? news.stretch->sourceBegin : parts_.narrator.Place());
        if (behind != places.begin())
            heard = static_cast<std::size_t>(behind - places.begin()) - 1;
    }
    tree_.ShowHeard(heard);
}

void ContentsPane::GoTo(std::size_t entry) {
    const GtkTextIter place = parts_.text.Structure().EntryAt(entry);
    parts_.text.GoTo(place);
    if (!parts_.goOnAt(place))
        parts_.readFrom(place);
}

bool ContentsPane::EvKeyDown(unsigned int key) {
    const bool readsFrom = key == (kKeyControl | GDK_Return) || key == (kKeyControl | GDK_KP_Enter);
    if (!readsFrom || !tree_.HasKeyboard())
        return false;
    // In the text it is the cursor that the same key reads from.
    if (const auto entry = tree_.Selected())
        GoTo(*entry);
    return true;
}

void ContentsPane::CmShow() {
    kShowContentsSetting.Set(!kShowContentsSetting.Get());
    parts_.commands.Check(kShowContents, kShowContentsSetting.Get());
    parts_.reshaped();
}

// And back into the text.
void ContentsPane::CmGoTo() {
    if (tree_.HasKeyboard()) {
        parts_.text.TakeKeyboard();
        return;
    }
    if (!kShowContentsSetting.Get())
        CmShow();
    if (gtk_widget_get_visible(widget_) != FALSE)
        tree_.TakeKeyboard();
    else
        parts_.tell("The window is too narrow for the contents beside the text.");
}

// From 1 on: of what is heard, else of what would be read.
std::size_t ContentsPane::PageNow() const {
    const std::vector<std::size_t> pages = parts_.text.Structure().Pages();
    const std::size_t place = isOurs_ && parts_.narrator.IsReading() ? parts_.narrator.Place()
                              : parts_.text.Start().Which() == ReadFrom::kCursor
                                  ? parts_.text.Start().FromCursor().begin
                                  : 0;
    return std::max<std::size_t>(
        static_cast<std::size_t>(std::ranges::upper_bound(pages, place) - pages.begin()), 1);
}

// A reading goes on there; otherwise the cursor does, and the large button reads from it.
void ContentsPane::CmGoToPage() {
    PageDialog dialog(PageNow(), parts_.text.Structure().PageCount());
    if (!dialog.Run(gtk_widget_get_toplevel(widget_)) ||
        dialog.Page() > parts_.text.Structure().PageCount())
        return;
    const GtkTextIter place = parts_.text.Structure().PageAt(dialog.Page() - 1);
    parts_.text.GoTo(place);
    parts_.text.TakeKeyboard();
    if (!parts_.goOnAt(place))
        parts_.tell(("Page " + std::to_string(dialog.Page()) + " of " +
                     std::to_string(parts_.text.Structure().PageCount()))
                        .c_str());
}
