#include "app/books/audiobooks.h"

#include <gdk/gdkkeysyms.h>

#include <optional>
#include <string>

#include "app/books/book_text.h"
#include "app/commands/command_numbers.h"
#include "app/saving/suggested_name.h"
#include "app/text/document_loading.h"
#include "documents/web_address.h"

Audiobooks::Audiobooks(const Parts& parts)
    : parts_(parts), dialog_([this](const char* text) { parts_.window.TellStatusText(text); }) {}

void Audiobooks::AddCommands(CommandSet& commands) {
    static constexpr CommandRow<Audiobooks> kRows[] = {
        {{.number = kSaveAsAudiobook,
          .label = "Save as &Audiobook...",
          .keys = {kKeyControl | kKeyAlt | GDK_A}},
         &Audiobooks::CmSaveAsAudiobook},
    };
    commands.Add(*this, kRows);
}

void Audiobooks::CmSaveAsAudiobook() {
    if (parts_.turn.IsTaken())
        return;
    const CommandTurn::Hold hold(parts_.turn);
    dialog_.Show(parts_.window.Widget(), parts_.voices.Chosen());
    if (dialog_.IsOpen() && !parts_.text.IsEmpty())
        AddText();
    if (dialog_.IsOpen())
        dialog_.EnableControls();
}

// The document as it is in its file has chapters and a cover; a scan has none, and is not
// recognised again. What its user has changed in the window has the headings that are still there.
void Audiobooks::AddText() {
    if (!parts_.awaitText() || !dialog_.IsOpen())
        return;
    const std::string text = parts_.text.Text();
    const std::string& file = parts_.text.File();
    Document document;
    const DocumentStructure& structure = parts_.text.Structure();
    if (!file.empty() && !IsWebAddress(file) && (!structure.IsRecognised() || structure.IsPart())) {
        const std::optional<Document> loaded =
            LoadDocumentUnderDialog(dialog_.Widget(), file.c_str(), false);
        if (!loaded || !dialog_.IsOpen())
            return;
        document = *loaded;
    }
    const std::string name = SuggestedName(text, file);
    if (document.text == text)
        dialog_.Add(EntryOf(document, file, name), false);
    else
        dialog_.Add(EntryOfText(text, structure.Now(), document, name), false);
}
