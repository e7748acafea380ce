// The small modal dialog that long work on the GUI thread shows: two lines, a bar, Cancel.
//
// The work runs inside Open and keeps the interface alive by asking IsToStop or waiting through
// the dialog. It
// is an LProgress, so that work written over one runs under it unchanged. GUI thread only, GDK lock
// held.
#pragma once

#include <string>

#include "foundation/threads/progress.h"
#include "gui/windows/dialog.h"

class LProgressDialog : public LDialog, public LProgress {
public:
    // The title is shown as the first line; it is not copied and must outlive the dialog.
    explicit LProgressDialog(const char* title) : title_(title) {}

    // Shows the dialog, calls MainFunction, destroys the dialog and returns true. `parent` may be
    // null.
    bool Open(GtkWidget* parent);
    // The work itself; the returned value is not used.
    virtual bool MainFunction() = 0;

    bool IsShown() const override { return IsOpen(); }
    void SetFirstLabel(const char* text) override;
    void SetSecondLabel(const char* text) override;
    void SetFraction(double fraction) override;
    // Also true when the main loop is asked to quit, or the parent is gone.
    bool IsToStop() override;
    // In steps of 75 ms, during which events are handled as they come; running out of time is
    // kProcessFailed.
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override;
    // Likewise; running out of time is kProcessDone.
    LProcessResult ProcessWait(unsigned int milliseconds) override;

protected:
    void WidgetDetached() override;

private:
    static void GCStop(GtkDialog* dialog, gint response, gpointer host);
    static gboolean GCDelete(GtkWidget* widget, GdkEvent* event, gpointer host);
    static void GCHidden(GtkWidget* widget, gpointer host);
    void Build(GtkWidget* parent);
    void ShowFigures(double fraction);
    void Turn(bool wait);  // one turn of the main loop
    bool Pump();           // handles pending events; true once the work is to stop
    bool WaitStep(LSignalObjectRef signal);  // until signalled, 75 ms at most; true as Pump

    const char* title_;
    // Owned by the dialog window, null while it is not shown.
    GtkWidget* bar_ = nullptr;
    GtkWidget* firstLabel_ = nullptr;
    GtkWidget* secondLabel_ = nullptr;
    GtkWidget* figures_ = nullptr;  // percent and time left
    gint64 start_ = 0;              // microseconds, when the bar last stood at 0
    bool stop_ = false;             // never cleared once set
};

// "about 2 minutes left" of work that took so many seconds for this fraction; empty while nobody
// can know.
std::string TimeLeftText(double fraction, double seconds);

// Runs the request's Process under a progress dialog. The request must outlive the dialog.
template <typename Request>
class LProcessDialog final : public LProgressDialog {
public:
    LProcessDialog(const char* title, Request& request)
        : LProgressDialog(title), request_(&request) {}

    bool MainFunction() override {
        result_ = Process(static_cast<LProgress&>(*this), *request_);
        return true;
    }
    LProcessResult Result() const { return result_; }  // kProcessFailed before the run

private:
    Request* request_;
    LProcessResult result_ = kProcessFailed;
};
