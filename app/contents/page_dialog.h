// "Go to Page": which one?
#pragma once

#include <cstddef>

#include "gui/windows/dialog.h"

class PageDialog final : public LDialog {
public:
    PageDialog(std::size_t now, std::size_t count);  // from 1 on
    bool Run(GtkWidget* parent);                     // true when one was chosen
    std::size_t Page() const { return page_; }

private:
    void InitDialog() override;
    bool CmOk() override;

    std::size_t page_;
    const std::size_t count_;
};
