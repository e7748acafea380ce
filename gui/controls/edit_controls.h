// Multi-line edits.
#pragma once

#include <string>

#include "foundation/files/text_buffer.h"
#include "gui/controls/control_host.h"

class LEditControls : public virtual LControlHost {
public:
    // Any bytes may be set (see DisplayText); got text is UTF-8. Positions and lengths in
    // characters, end -1 is the end of the text.
    void SetEditText(int id, const char* text);
    void SetEditText(int id, const LStringLongTemplate<char>& text);
    void GetEditText(int id, LStringLongTemplate<char>& out) const;
    std::string GetEditText(int id) const;
    int GetEditTextLength(int id) const;
    void SetEditTextSelection(int id, int start, int end);
    void SetEditTextSelectionAll(int id);
    void EditTextInsert(int id, const char* text);  // in place of the selection
    void EditTextCut(int id);
    void EditTextCopy(int id);
    void EditTextPaste(int id);
    void EditPromptSet(int id, const char* text);  // shown in grey while the edit is empty

    // The maximum's command takes the place of the change's above 65536 characters; command 0 ends
    // what was registered before.
    void HandleEditTextChange(int id, int command = kUseControlId);
    void HandleEditTextMax(int id, int command = kUseControlId);

private:
    void HandleEditSignal(int id, const char* key, int command);
    GtkTextBuffer* EditBufferOf(int id) const;
};
