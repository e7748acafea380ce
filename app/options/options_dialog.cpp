#include "app/options/options_dialog.h"

#include "app/options/documents_page.h"
#include "app/options/general_page.h"
#include "app/options/hot_keys_page.h"
#include "app/words/words_page.h"

bool OptDlg(GtkWidget* parent) {
    GeneralDlgImp general;
    HotkeysDlgImp hotKeys;
    WordsPage words;
    DocumentsPage documents;
    LPropertySheet sheet;
    sheet.AddPage(general, {"General", false, DlgGenGeneralDlg});
    sheet.AddPage(hotKeys, {"HotKeys", false, DlgGenHotkeysDlg});
    sheet.AddPage(words, {"Words", false, DlgGenWordsPage});
    sheet.AddPage(documents, {"Documents", false, DlgGenDocumentsPage});
    return sheet.Open(parent, "Options", 0);
}
