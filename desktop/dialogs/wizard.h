// Dialogs one after the other in one window, with Back, Next and at the end Finish.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

#include "gui/gobject_ref.h"
#include "gui/windows/dialog.h"

class LWizard;

// A page's Widget() is the wizard's window while that is open. CmOk answers whether the page may be
// left forwards, CmCancel whether the wizard may be given up.
class LWizardPage : public LDialog {
protected:
    LWizard& Wizard() const { return *wizard_; }  // while it is open
    // Each time that the page has come into view; the buttons are as the place of the page has it.
    virtual void EvPageShown() {}
    // Of the button that goes forward; null for the usual one.
    virtual const char* ForwardText() const { return nullptr; }

private:
    friend class LWizard;
    LWizard* wizard_ = nullptr;
};

// GUI thread, GDK lock held.
class LWizard {
public:
    LWizard() = default;
    LWizard(const LWizard&) = delete;
    LWizard& operator=(const LWizard&) = delete;
    ~LWizard() { Close(); }

    // Pages are borrowed until Open returns; the title of the data is the page's headline.
    void AddPage(LWizardPage& page, LDialog::OpenGenData genData);

    // Runs the wizard modally, once; true when the last page was accepted. `parent` may be null.
    // The window of an accepted wizard stays, disabled, as long as the wizard does: were it gone
    // before what it led to is told, the keyboard would have gone to another program meanwhile.
    bool Open(GtkWidget* parent, const char* title);
    GtkWidget* Window() const { return window_.Get(); }  // null before and without

    // The button that goes forward from the page in view, which on the last page is Finish.
    void EnableFinish(bool enabled);
    void EnableBack(bool enabled);
    void EnableCancel(bool enabled);
    void GoForward();  // as the page says itself, without its CmOk

private:
    struct Page {
        LWizardPage* page;
        LDialog::OpenGenData genData;
    };
    void Build(GtkWidget* parent, const char* title);
    void AddPageTable(const Page& page);
    void AddButtons();
    void Show(std::size_t index);
    bool Leave();  // the page in view forwards; true at the end
    void Close();
    static void GCBack(GtkButton* button, gpointer wizard);

    std::vector<Page> pages_;
    std::size_t shown_ = 0;
    GObjectRef<GtkWidget> window_;  // the user may have destroyed it
    // Owned by the window; null while it is closed.
    GtkWidget* notebook_ = nullptr;
    GtkWidget* back_ = nullptr;
    GtkWidget* forward_ = nullptr;
};

// A text of the page over its whole width, broken into lines, that the Tab key reaches and that can
// be copied. The one under kPageText has the focus when the page comes into view, so that a screen
// reader speaks it.
constexpr int kPageText = 100;
void AddPageText(LDialogGenContext& context, int id, const char* text);
