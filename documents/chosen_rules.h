// What the user wants to be left out of documents.
#pragma once

#include "documents/document.h"
#include "foundation/settings/setting.h"

// On: it is left out.
constexpr UserSetting<bool> kSkipMarksSetting{"Skipping", "Marks", true};
constexpr UserSetting<bool> kSkipPageHeadsSetting{"Skipping", "PageHeads", true};
constexpr UserSetting<bool> kSkipNotesSetting{"Skipping", "Notes", false};
constexpr UserSetting<bool> kSkipCodeSetting{"Skipping", "Code", false};
constexpr UserSetting<bool> kSkipCaptionsSetting{"Skipping", "Captions", false};

// Any thread.
DocumentRules ChosenDocumentRules();
