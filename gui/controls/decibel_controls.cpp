#include "gui/controls/decibel_controls.h"

#include "gui/widgets/db_display.h"
#include "gui/widgets/db_edit.h"

namespace {

void GCDBEditChange(GtkWidget* box, gint, gpointer host) {
    DeliverStored(host, box, "_cmd");
}

}  // namespace

void LDecibelControls::LDBEditInit(int id) {
    if (GtkWidget* box = GetControlByID(id))
        LDBEdit::Init(id, box);
}

void LDecibelControls::DBEditSetLevel(int id, LDB level) {
    if (GtkWidget* box = GetControlByID(id))
        LDBEdit::SetLevel(box, level);
}

LDB LDecibelControls::DBEditGetLevel(int id) const {
    GtkWidget* box = GetControlByID(id);
    return box == nullptr ? LDB(LDB::kSilence) : LDBEdit::GetLevel(box);
}

void LDecibelControls::HandleDBEditChange(int id, int command) {
    GtkWidget* box = GetControlByID(id);
    if (box == nullptr || LDBEdit::GetHandle(box, false) == nullptr)
        return;
    LDBEdit::Init(id, box);
    StoreCommand(box, "_cmd", command, id);
    Connect(box, kVolumeChangeSignal, G_CALLBACK(GCDBEditChange));
}

void LDecibelControls::DBDisplaySetLevels(int id, const LDBMC& levels) {
    LDBDisplay::SetLevels(GetControlByID(id), levels);
}
