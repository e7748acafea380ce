#include "app/queue/queue_commands.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"
#include "app/queue/queue_dialog.h"
#include "app/settings_keys.h"

QueueCommands::QueueCommands(Narrator& narrator, CommandSet& commands, Listener listener)
    : narrator_(narrator),
      commands_(commands),
      listener_(std::move(listener)),
      kept_(narrator.Waiting(),
            {.mayKeep = [] { return kKeepTextSetting.Get(); }, .tell = listener_.tell}),
      changes_(narrator.Waiting().Changes(), [this](const auto&) { EvChange(); }) {}

void QueueCommands::AddCommands() {
    static constexpr CommandRow<QueueCommands> kRows[] = {
        {{.number = kReadNextFile,
          .label = "Read Ne&xt File",
          .keys = {kKeyControl | kKeyShift | GDK_L},
          .needs = kNeedsWaitingFile},
         &QueueCommands::CmNext},
        {{.number = kWaitingFiles,
          .label = "&List of Waiting Files...",
          .keys = {kKeyControl | GDK_L},
          .needs = kNeedsWaitingFile},
         &QueueCommands::CmShow},
    };
    commands_.Add(*this, kRows);
}

CommandNeeds QueueCommands::Available() const {
    return narrator_.Waiting().Files().empty() ? 0 : kNeedsWaitingFile;
}

std::string QueueCommands::Status() const {
    const std::size_t count = narrator_.Waiting().Files().size();
    return count == 0 ? "" : count == 1 ? "1 file waits" : std::to_string(count) + " files wait";
}

// From the main loop: what sets them aside has something to say of itself.
void QueueCommands::EvChange() {
    const bool isAside = narrator_.Waiting().IsAside();
    isUntold_ = isAside && (isUntold_ || !wasAside_);
    wasAside_ = isAside;
    soon_.Start(0, [this] {
        if (std::exchange(isUntold_, false))
            listener_.tell((Status() + " until they are asked for (Ctrl+L lists them)").c_str());
        listener_.changed();
    });
}

void QueueCommands::CmShow() {
    if (const auto chosen =
            QueueDialog(narrator_.Waiting(), listener_.withProgress).Run(listener_.parent())) {
        narrator_.Waiting().MoveToFront(*chosen);
        narrator_.NextItem();
    }
}
