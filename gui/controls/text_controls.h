// Single-line entries, and the entry of a combo box.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <string>

#include "foundation/files/text_buffer.h"
#include "gui/controls/control_host.h"

class LTextControls : public virtual LControlHost {
public:
    // Positions and lengths in characters, end -1 is the end of the text. Text that fills `size`
    // bytes has no terminator. Only spaces are trimmed.
    void SetText(int id, const char* text);
    void GetText(int id, char* out, std::size_t size) const;
    void GetText(int id, char (&out)[kTextBufferSize]) const;
    std::string GetText(int id) const;
    int GetTextLength(int id) const;
    void GetTextAndTrim(int id, char (&out)[kTextBufferSize]) const;
    void SetInt(int id, int value);
    int GetInt(int id) const;  // 0 when not a number
    void SetPasswordText(int id, const char* text);
    void GetPasswordTextAndTrim(int id, char (&out)[kTextBufferSize]) const;
    void SetTextSelection(int id, int start, int end);
    void SetTextSelectionAll(int id);
    void SetTextEditable(int id, bool editable);  // a multi-line edit as well
    bool IsTextEditable(int id) const;
    void TextPromptSet(int id, const char* text);  // shown in grey while the entry is empty

    // Each change by the user; what a generator makes is registered already, under its id.
    void HandleTextChange(int id, int command = kUseControlId);
};

// The entry itself or the entry of a combo box; null for anything else.
GtkEntry* EntryOf(GtkWidget* control);
