#include "app/tool_commands.h"

#include <gdk/gdkkeysyms.h>

#include "app/commands/command_numbers.h"
#include "app/help/help_links.h"
#include "app/help/machine_check.h"
#include "app/options/options_dialog.h"
#include "app/words/say_differently_dialog.h"
#include "gui/icon_numbers.h"

void ToolCommands::AddCommands(CommandSet& commands) {
    static constexpr CommandRow<ToolCommands> kRows[] = {
        {{.number = kSayDifferently,
          .label = "Say It &Differently...",
          .keys = {kKeyControl | GDK_D},
          .needs = kNeedsText},
         &ToolCommands::CmSayDifferently},
        {{.number = kCheckComputer, .label = "&Check This Computer..."},
         &ToolCommands::CmCheckComputer},
        {{.number = kMoreVoices, .label = "More &Voices..."}, &ToolCommands::CmMoreVoices},
        {{.number = kOptions,
          .label = "&Options...",
          .name = "Options",
          .tip = "Change settings and hotkey preferences",
          .icon = kOptionsIcon},
         &ToolCommands::CmOptions},
        {{.number = kCommandHelp,
          .name = "Display Help Contents",
          .tip = "Open the help documentation",
          .keys = {GDK_F1}},
         &ToolCommands::CmHelp},
    };
    commands.Add(*this, kRows);
    commands.AddRange(LHelpLinks::kFirst, LHelpLinks::kLast, LHelpLinks::Open);
}

void ToolCommands::CmOptions() {
    hotKeys_.Stop();
    voices_.TakeFrom([this] { OptDlg(window_.Widget()); });
    // The window may have been closed meanwhile.
    if (window_.IsOpen())
        hotKeys_.Start();
}

void ToolCommands::CmSayDifferently() {
    SayDifferently(window_.Widget(), text_.WordAtCursor());
}

void ToolCommands::CmCheckComputer() {
    RunMachineCheck(window_.Widget());
}

void ToolCommands::CmMoreVoices() {
    RunMachineCheckForVoices(window_.Widget());
}
