// The page "Documents" of the options: what is left out of them when they are read.
#pragma once

#include <array>

#include "gui/windows/property_sheet.h"

class DocumentsPage final : public LPropertyPage {
public:
    DocumentsPage() { SetHelpPage("documents"); }

    void InitDialog() override;
    bool CmOk() override;

private:
    static constexpr std::size_t kChoices = 6;
    std::array<bool, kChoices> shown_{};
};

void DlgGenDocumentsPage(LDialogGenContext& context);
