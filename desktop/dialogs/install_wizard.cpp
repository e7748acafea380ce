#include "desktop/dialogs/install_wizard.h"

#include <unistd.h>

#include <string>
#include <vector>

#include "desktop/dialogs/wizard.h"
#include "desktop/install_parts.h"
#include "desktop/installation.h"
#include "desktop/root_prompt.h"
#include "desktop/user_accounts.h"
#include "desktop/watched_command.h"
#include "foundation/files/machine_root.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

constexpr const char* kInstallTitle = "Install Lectora";
constexpr int kPlaces = 102;  // its scrolled window is the next number
constexpr int kStep = 104;
constexpr int kBar = 105;
constexpr int kStartNow = 106;

void DlgGenInstallWelcome(LDialogGenContext& context) {
    AddPageText(context, kPageText, "");
}

void DlgGenInstallPlaces(LDialogGenContext& context) {
    AddPageText(context, kPageText, "");
    context.AddList(kPlaces, LRows{7});
}

void DlgGenInstallProgress(LDialogGenContext& context) {
    AddPageText(context, kPageText, "Lectora is being installed. This takes a few seconds.");
    context.AddProgressBar(kBar);
    AddPageText(context, kStep, "");
}

void DlgGenInstallEnd(LDialogGenContext& context) {
    AddPageText(context, kPageText, "");
    context.AddCheckBox(kStartNow, "Start Lectora now");
}

// How the work ended, for the page that tells it.
struct Outcome {
    bool done = false;
    std::string trouble;
};

class WelcomePage : public LWizardPage {
    void InitDialog() override {
        std::string text =
            "Lectora reads text aloud: what you type or paste, documents, and what you have "
            "selected in any other program. This installs it for all users of this computer.\n\n";
        if (IsInstalled())
            text +=
                "Lectora is installed already. It will be replaced by this copy; settings and "
                "hotkeys stay. A Lectora that is running goes on until you end it.\n\n";
        if (!LIsUserRoot())
            text += RootPromptCommand({"true"}).empty()
                        ? "You are not the administrator, and no program is installed that could "
                          "ask for the administrator's password. Please cancel, and run this "
                          "again as root: sudo lectora -install"
                        : "You will be asked for the administrator's password.";
        SetStaticText(kPageText, text.c_str());
    }
};

class PlacesPage : public LWizardPage {
    void InitDialog() override {
        static constexpr LListColumn kColumns[] = {{"What", 36}, {"Where", 46}, {"Size", 18}};
        LVInit(kPlaces, {LListColumns::kPercent, kColumns});
        std::int64_t bytes = 0;
        for (const LInstallPart& part : InstallParts(OwnTree())) {
            LVAddRow(kPlaces, {part.what, part.where.c_str(), SizeText(part.bytes).c_str()});
            bytes += part.bytes;
        }
        LVSetCurSel(kPlaces, 0);
        SetStaticText(kPageText,
                      ("These files will be placed on your computer, " + SizeText(bytes) +
                       " in all. Nothing that belongs to another program is touched, and "
                       "\"lectora -uninstall\" takes all of it away again.")
                          .c_str());
    }
    const char* ForwardText() const override { return "_Install"; }
};

// Does the work while it is in view.
class ProgressPage : public LWizardPage, private LProgress {
public:
    explicit ProgressPage(Outcome& outcome) : outcome_(outcome) {}

private:
    bool IsShown() const override { return true; }
    void SetFirstLabel(const char*) override {}
    void SetSecondLabel(const char* text) override {
        SetStaticText(kStep, text);
        IsToStop();
    }
    void SetFraction(double fraction) override {
        PBSetProgress(kBar, fraction);
        IsToStop();
    }
    bool IsToStop() override {
        while (gtk_events_pending())
            gtk_main_iteration_do(FALSE);
        return stopped_;
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override {
        gtk_progress_bar_pulse(GTK_PROGRESS_BAR(GetControlByID(kBar)));
        g_usleep(milliseconds * 1000UL);
        return IsToStop() ? kProcessStopped : kProcessDone;
    }
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) override {
        return signal.WaitSignal(milliseconds) ? kProcessDone : kProcessFailed;
    }

    void InitDialog() override {
        Connect(Widget(), "response", G_CALLBACK(GCStop));
        SetAccessibleName(GetControlByID(kBar), kInstallTitle);
    }
    // An answer that comes while the work runs is handled by the wizard when that has ended.
    static void GCStop(GtkDialog*, gint, gpointer host) {
        auto& self = dynamic_cast<ProgressPage&>(HostOf(host));
        self.stopped_ = self.working_;
    }
    bool CmCancel() override { return false; }
    bool CmOk() override { return false; }

    void EvPageShown() override {
        Wizard().EnableBack(false);
        Wizard().EnableFinish(false);
        stopped_ = false;
        working_ = true;
        IsToStop();  // shows the page before the work begins
        outcome_.trouble = LIsUserRoot() ? InstallHere() : InstallAsRoot();
        outcome_.done = outcome_.trouble.empty();
        working_ = false;
        Wizard().GoForward();
    }
    std::string InstallHere() {
        return InstallTree(OwnTree(), [this](const std::string& path, double fraction) {
            SetStaticText(kStep, path.c_str());
            SetFraction(fraction);
            return !stopped_;
        });
    }
    // The same program does it on the console, as root.
    std::string InstallAsRoot() {
        const std::string program = OwnTree() + "/opt/quillon/lectora/bin/lectora";
        const std::string command = RootPromptCommand({program, "-install"});
        if (command.empty())
            return "No program is installed that could ask for the administrator's password. "
                   "Please run this as root: sudo " +
                   program + " -install";
        Wizard().EnableCancel(false);  // what runs as root is nothing that we could halt
        LWatchedCommand run;
        if (run.Start(command) && Process(*this, run) == kProcessDone)
            return std::string();
        return WhyFailed(run);
    }

    Outcome& outcome_;
    bool working_ = false;
    bool stopped_ = false;
};

class EndPage : public LWizardPage {
public:
    explicit EndPage(const Outcome& outcome) : outcome_(outcome) {}
    bool StartsNow() const { return startsNow_; }

private:
    void EvPageShown() override {
        Wizard().EnableBack(false);
        Wizard().EnableCancel(false);
        SetStaticText(
            kPageText,
            (outcome_.done ? "Lectora is installed. You find it in the menu of your programs, and "
                             "the command \"lectora\" starts it.\n\nTo remove it again, run "
                             "\"lectora -uninstall\" as root."
                           : "Lectora could not be installed, and nothing has been changed.\n\n" +
                                 outcome_.trouble)
                .c_str());
        // Not as root: whoever did this with sudo does not want to read as root.
        ShowControl(kStartNow, outcome_.done && ::geteuid() != 0);
        SetCheck(kStartNow, outcome_.done && ::geteuid() != 0);
    }
    bool CmOk() override {
        startsNow_ = GetCheck(kStartNow);
        return true;
    }
    const Outcome& outcome_;
    bool startsNow_ = false;
};

}  // namespace

bool RunInstallWizard() {
    if (OwnTree().empty() || IsOwnTreeInPlace()) {
        const bool isInstalled = !OwnTree().empty();
        MessageBoxRun(nullptr, isInstalled ? GTK_MESSAGE_INFO : GTK_MESSAGE_ERROR, GTK_BUTTONS_OK,
                      kInstallTitle,
                      isInstalled ? "Lectora is installed already." : "Cannot install",
                      isInstalled ? nullptr : kNoTreeText);
        return false;
    }
    Outcome outcome;
    WelcomePage welcome;
    PlacesPage places;
    ProgressPage progress(outcome);
    EndPage end(outcome);
    LWizard wizard;
    wizard.AddPage(welcome, {"Welcome to Lectora", false, DlgGenInstallWelcome});
    wizard.AddPage(places, {"What will be placed where", false, DlgGenInstallPlaces});
    wizard.AddPage(progress, {"Installing", false, DlgGenInstallProgress});
    wizard.AddPage(end, {"Installation", false, DlgGenInstallEnd});
    const bool finished = wizard.Open(nullptr, kInstallTitle);
    return finished && end.StartsNow();
}
