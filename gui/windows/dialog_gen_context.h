// What a dialog's generator function lays the dialog out with.
//
// Each call makes a widget, places it in the current container and registers it under its id in the
// dialog. A label made beside a control goes under id + 1 and speaks for the control to screen
// readers. What has no label is named after its group, else after the dialog; `name` says it
// better. Id -1 stands for widgets that are never addressed. Containers form a stack: every
// Start... and AddGroup has its End. Widths are pixels. In the texts of controls and groups "&"
// marks the letter that reaches them with Alt, and "&&" stands for itself; static texts and what
// stands in a field are plain.
#pragma once

#include <gtk/gtk.h>

#include <vector>

class LDialog;

// A set of standard buttons.
using LDialogButtons = unsigned int;
constexpr LDialogButtons kNoButtons = 0;
constexpr LDialogButtons kOkButton = 1;
constexpr LDialogButtons kCancelButton = 2;
constexpr LDialogButtons kHelpButton = 4;
constexpr LDialogButtons kOkCancelHelp = kOkButton | kCancelButton | kHelpButton;

// A height in rows of text, in whatever letters the desktop has; 0 leaves it to the control.
struct LRows {
    int count = 0;
};

class LDialogGenContext {
public:
    // The title, borrowed, names what nothing else names.
    LDialogGenContext(LDialog& dialog, GtkWidget* rootTable, const char* title);
    LDialogGenContext(const LDialogGenContext&) = delete;
    LDialogGenContext& operator=(const LDialogGenContext&) = delete;

    LDialog& Dialog() { return dialog_; }

    // Containers.
    void StartVBox(int width);
    void StartHBox();
    void EndVBox();
    void EndHBox();
    void AddGroup(int id, const char* title, int width = 0);
    void GroupEnd();
    void StartPanels();  // panels lie over each other; the dialog shows one of them
    void StartPanel(int id = -1);
    void EndPanel();
    void EndPanels();
    void IndentStart() { indent_ += 3; }
    void IndentEnd() { indent_ -= 3; }
    void SetWidth(int width);
    void Finalize();

    // Placement of a widget made elsewhere; a left item leaves its row open for a right item.
    void AddSpan(GtkWidget* widget, int id, unsigned int leftColumn, unsigned int rightColumn);
    void AddSpanFull(GtkWidget* widget, int id);
    void AddSpanLeft(GtkWidget* widget, int id);
    void AddSpanRight(GtkWidget* widget, int id);

    // Texts. What comes after a title is indented further.
    void AddStatic(int id, const char* text, int width = 0, int height = 0);
    void AddStaticLeft(int id, const char* text);
    void AddStaticTitle(int id, const char* text, int height = 0);
    void AddHorizontalLine(int id, const char* text);

    // Controls. AddRadioButtonGroup adds the first button of a new group.
    void AddInput(int id, const char* text, int width = 0);
    void AddInputPassword(int id, const char* text, int width = 0);
    void AddInputUpDown(int id, const char* text);  // range: LWindow::UDInit
    void AddEdit(int id, const char* text, LRows height = {}, const char* name = nullptr);
    void AddEditReadOnly(int id, const char* text, LRows height = {}, const char* name = nullptr);
    void AddPullDownList(int id, const char* text, int width = 0);
    void AddPullDownList(int id);
    void AddComboBox(int id, const char* text, int width = 0);
    void AddComboBox(int id);
    // Its scrolled window: id + 1. The heading of its columns comes on top of the height.
    void AddList(int id, LRows height, const char* name = nullptr);
    void AddButton(int id, const char* text, int align = 0, int width = 0, int height = 0);
    void AddCheckBox(int id, const char* text, int width = 0);
    void AddRadioButtonGroup(int id, const char* text);
    void AddRadioButton(int id, const char* text);
    void AddScrollBar(int id, const char* text);  // range: LWindow::SBSetRange
    void AddScrollBar(int id);
    void AddProgressBar(int id);
    void AddDBEdit(int id, const char* text);  // decibel slider, wired
    void AddDBEdit(int id);
    void AddDBDisplay(int id);  // level meter
    void AddHyperLink(int id, const char* text, const char* link);
    void AddDateTime(int id, const char* text, int width = 0);  // its entry is id + 1

    // The action area has these buttons (kOkButton | kHelpButton, for example), OK under its own
    // label where one is given. OK is what Enter presses in an entry, too. The special button
    // stands first; it is a stock item or else has the given text. With kNoButtons there is no
    // action area at all.
    void AddOkCancelHelp(LDialogButtons buttons, const char* okLabel = nullptr);
    void AddSpecialOkCancelHelp(int id, const char* stockIdOrText, LDialogButtons buttons,
                                const char* okLabel = nullptr);

private:
    enum class Kind { kBox, kRootTable, kGroup, kPanels };
    struct Frame {
        GtkWidget* container;
        Kind kind;
        unsigned int row;  // next free row, tables only
    };
    Frame& Top() { return containers_.back(); }
    bool InTable();
    void Place(GtkWidget* widget, unsigned int leftColumn, unsigned int rightColumn);
    void Push(GtkWidget* container, Kind kind) { containers_.push_back({container, kind, 0}); }
    void PopBox();
    void AttachContainer(GtkWidget* widget, GtkAttachOptions horizontal, unsigned int padding);
    void AddLabelled(GtkWidget* control, int id, const char* text);
    void NameUnlabelled(GtkWidget* control, const char* name);
    void AddUnlabelled(GtkWidget* control, int id);
    void AddEditWidget(int id, const char* text, LRows height, bool readOnly, const char* name);
    GtkWidget* FindButtonBox();
    void SetUpActionButton(GtkWidget* button, LDialogButtons buttons, const char* okLabel);
    void RemoveActionArea(GtkWidget* box);

    LDialog& dialog_;
    const char* title_;
    int indent_ = 1;
    GtkWidget* radioGroup_ = nullptr;  // first button of the current group
    std::vector<Frame> containers_;    // innermost last; never empty
};
