// A document whose beginning is there long before its end: a scan, recognised page by page.
#pragma once

#include <functional>

#include "documents/document.h"

// Is handed the document as far as it is there, each time more of it is: what comes later stands
// behind it, also in the whole. On the thread that loads.
using BeginningTaker = std::function<void(const Document& beginning)>;

// As LoadDocument; most kinds of document are there at once, and the taker hears nothing.
Document LoadGrowingDocument(const char* path, const StopTest& isToStop, const DocumentRules& rules,
                             const BeginningTaker& take);
