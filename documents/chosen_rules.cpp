#include "documents/chosen_rules.h"

DocumentRules ChosenDocumentRules() {
    return {.referenceMarks = !kSkipMarksSetting.Get(),
            .notes = !kSkipNotesSetting.Get(),
            .code = !kSkipCodeSetting.Get(),
            .captions = !kSkipCaptionsSetting.Get(),
            .pageHeads = !kSkipPageHeadsSetting.Get()};
}
