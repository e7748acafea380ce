#include "app/text/text_pane.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"
#include "documents/web_address.h"
#include "foundation/owned_text.h"
#include "foundation/white_space.h"
#include "gui/accessible.h"
#include "gui/controls/control_factory.h"
#include "gui/display_text.h"

TextPane::TextPane(Listener listener)
    : listener_(std::move(listener)),
      kept_(listener_.tell),
      find_(listener_.tell, listener_.reshaped),
      drop_(listener_.dropped, [this](const std::string& text) { TakeFromProgram(text); }) {}

LEditWidgets TextPane::NewTextBox() {
    const LEditWidgets edit = NewEdit(false, GTK_POLICY_ALWAYS);
    view_ = GTK_TEXT_VIEW(edit.textView);
    buffer_ = GObjectRef<GtkTextBuffer>::Share(gtk_text_view_get_buffer(view_));
    history_.Attach(buffer_.Get(), lines_);
    history_.KeepFacts([this] { return Facts(); },
                       [this](const auto&... facts) { TakeBack(facts...); });
    highlight_.Attach(view_, lines_);
    structure_.Attach(buffer_.Get(), lines_);
    lines_.Attach(buffer_.Get());
    kept_.Attach(buffer_.Get(), lines_);
    structure_.Restore(StructureOfLines(kept_.TakeStructure(), lines_.Text().size()));
    kept_.KeepStructure([this] { return LinesOfStructure(structure_.Now()); });
    history_.BeginAnew();
    start_.Attach(buffer_.Get(), lines_, listener_.startMoved);
    clicks_.Attach(view_, listener_.clicks);
    original_.Attach(view_, lines_);
    pasted_.Connect(buffer_.Get(), "paste-done", G_CALLBACK(GCPasted), this);
    size_.Attach(edit.textView);
    SetAccessibleName(edit.textView, "Text to read");
    return edit;
}

GtkWidget* TextPane::NewFindBar(const CommandSet& commands) {
    return find_.Create(view_, lines_, commands.Tip(kFindNext).c_str());
}

void TextPane::TakeDrops(GtkWidget* window) {
    drop_.Attach(window, GTK_WIDGET(view_));
}

void TextPane::AddCommands(CommandSet& commands) {
    static constexpr CommandRow<TextPane> kRows[] = {
        {{.number = kUndo, .label = "&Undo", .keys = {kKeyControl | GDK_Z}, .needs = kNeedsUndo},
         &TextPane::CmUndo},
        {{.number = kRedo,
          .label = "&Redo",
          .keys = {kKeyControl | kKeyShift | GDK_Z, kKeyControl | GDK_Y},
          .needs = kNeedsRedo},
         &TextPane::CmRedo},
        {{.number = kFind, .label = "&Find...", .keys = {kKeyControl | GDK_F}, .needs = kNeedsText},
         &TextPane::CmFind},
        {{.number = kFindNext,
          .label = "Find &Next",
          .tip = "Find the next place",
          .keys = {GDK_F3},
          .needs = kNeedsText},
         &TextPane::CmFindNext},
        {{.number = kLargerText,
          .label = "&Larger Text",
          // With Shift where "+" is above another sign.
          .keys = {kKeyControl | GDK_plus, kKeyControl | kKeyShift | GDK_plus,
                   kKeyControl | GDK_equal, kKeyControl | GDK_KP_Add}},
         &TextPane::CmLarger},
        {{.number = kSmallerText,
          .label = "&Smaller Text",
          .keys = {kKeyControl | GDK_minus, kKeyControl | GDK_KP_Subtract}},
         &TextPane::CmSmaller},
        {{.number = kNormalText,
          .label = "Normal &Text Size",
          .keys = {kKeyControl | GDK_0, kKeyControl | GDK_KP_0}},
         &TextPane::CmNormalSize},
        {{.number = kTextChanged}, &TextPane::EvTextChanged},
    };
    commands.Add(*this, kRows);
}

CommandNeeds TextPane::Available() const {
    return (IsEmpty() ? 0 : kNeedsText) | (history_.CanUndo() ? kNeedsUndo : 0) |
           (history_.CanRedo() ? kNeedsRedo : 0) | (isArticle_ ? kNeedsArticle : 0);
}

bool TextPane::EvKeyDown(unsigned int key) {
    if (key != GDK_Escape || !find_.HasKeyboard())
        return false;
    find_.Close();
    return true;
}

bool TextPane::IsEmpty() const {
    return !buffer_ || gtk_text_buffer_get_char_count(buffer_.Get()) == 0;
}

void TextPane::Replace(const std::string& text) {
    const std::string shown = DisplayText(text);
    gtk_text_buffer_begin_user_action(buffer_.Get());
    gtk_text_buffer_set_text(buffer_.Get(), shown.data(), static_cast<gint>(shown.size()));
    gtk_text_buffer_end_user_action(buffer_.Get());
    highlight_.End();
    structure_.Clear();
    isArticle_ = false;
    generation_ = ++generations_;
    start_.TextCame();
}

void TextPane::TakeFile(const Document& document, const std::string& path, bool isPart) {
    Replace(document.text);
    if (isPart)
        history_.LastStepGrows();
    isArticle_ = document.hasSurroundings;
    kept_.CameFromFile(path);
    structure_.Set(document, isPart);
}

void TextPane::TakeMore(const Document& more, bool isPart) {
    GtkTextBuffer* buffer = buffer_.Get();
    GtkTextIter begin;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &begin, &end);
    const std::size_t size = lines_.Bytes(begin, end);
    gtk_text_buffer_get_iter_at_mark(buffer, &begin, gtk_text_buffer_get_insert(buffer));
    gtk_text_buffer_get_iter_at_mark(buffer, &end, gtk_text_buffer_get_selection_bound(buffer));
    const int cursor = gtk_text_iter_get_offset(&begin);
    const int bound = gtk_text_iter_get_offset(&end);
    isGrowing_ = true;
    history_.BeginGrowth();
    highlight_.BeginGrowth();
    gtk_text_buffer_get_end_iter(buffer, &end);
    gtk_text_buffer_insert(buffer, &end, more.text.data(), static_cast<gint>(more.text.size()));
    highlight_.EndGrowth();
    history_.EndGrowth();
    isGrowing_ = false;
    // Who writes at the end goes on where that was.
    if (start_.IsPlaced()) {
        gtk_text_buffer_get_iter_at_offset(buffer, &begin, cursor);
        gtk_text_buffer_get_iter_at_offset(buffer, &end, bound);
        gtk_text_buffer_select_range(buffer, &begin, &end);
    }
    structure_.Grow(more, size, isPart);
}

void TextPane::EvTextChanged() {
    if (!isGrowing_)
        listener_.changed();
}

TextFacts TextPane::Facts() const {
    return {structure_.Now(), kept_.File(), !kept_.IsKept(), isArticle_, generation_};
}

void TextPane::TakeBack(const TextFacts& facts, bool isWhole) {
    structure_.Restore(facts.structure);
    if (!isWhole)
        return;
    isArticle_ = facts.isArticle;
    generation_ = facts.generation;
    if (facts.isPrivate)
        kept_.CameFromProgram();
    else
        kept_.CameFromFile(facts.file);
    listener_.renamed();
}

std::string TextPane::Title() const {
    if (File().empty() || !structure_.Title().empty())
        return File().empty() ? "" : structure_.Title();
    const OwnedText name(g_filename_display_basename(File().c_str()));
    return name.get();
}

void TextPane::WasSavedAs(const std::string& path) {
    isArticle_ = false;
    kept_.CameFromFile(path);
}

void TextPane::TakeFromProgram(const std::string& text) {
    kept_.KeepNow();
    Replace(text);
    kept_.CameFromProgram();
}

std::string TextPane::WordAtCursor() const {
    GtkTextIter begin;
    GtkTextIter end;
    if (gtk_text_buffer_get_selection_bounds(buffer_.Get(), &begin, &end))
        return lines_.Text(begin, end);
    end = begin;
    const bool isBehindStart = gtk_text_iter_inside_word(&begin) || gtk_text_iter_ends_word(&begin);
    if (isBehindStart && !gtk_text_iter_starts_word(&begin))
        gtk_text_iter_backward_word_start(&begin);
    if (!gtk_text_iter_ends_word(&end))
        gtk_text_iter_forward_word_end(&end);
    return gtk_text_iter_starts_word(&begin) ? lines_.Text(begin, end) : "";
}

GtkTextIter TextPane::PlaceCursor(std::size_t byte) {
    GtkTextIter at;
    gtk_text_buffer_get_start_iter(buffer_.Get(), &at);
    lines_.Forward(at, byte);
    gtk_text_buffer_place_cursor(buffer_.Get(), &at);
    ShowCursor();
    return at;
}

void TextPane::CmUndo() {
    history_.Undo();
    ShowCursor();
}

void TextPane::CmRedo() {
    history_.Redo();
    ShowCursor();
}

void TextPane::ShowCursor() {
    gtk_text_view_scroll_mark_onscreen(view_, gtk_text_buffer_get_insert(buffer_.Get()));
}

void TextPane::GoTo(const GtkTextIter& place) {
    gtk_text_buffer_place_cursor(buffer_.Get(), &place);
    gtk_text_view_scroll_to_mark(view_, gtk_text_buffer_get_insert(buffer_.Get()), 0, TRUE, 0, 0);
}

void TextPane::CmFind() {
    find_.Open();
}

void TextPane::CmFindNext() {
    if (find_.IsOpen())
        find_.FindNext();
    else
        CmFind();
}

void TextPane::TellSize(int points) const {
    listener_.tell(("Text size: " + std::to_string(points) + " points").c_str());
}

// The address of a page that was pasted alone stands for the page.
void TextPane::GCPasted(GtkTextBuffer*, GtkClipboard*, gpointer self) {
    const auto* pane = static_cast<TextPane*>(self);
    const std::string text = pane->Text();
    if (IsWebAddress(text))
        pane->listener_.dropped({std::string(Trimmed(text))});
}
