// The tables themselves (language_forms.h).
#pragma once

#include "speech/language_forms.h"

extern const LanguageForms kEnglishForms;
extern const LanguageForms kBritishForms;  // its dates begin with the day
extern const LanguageForms kGermanForms;
extern const LanguageForms kFrenchForms;
extern const LanguageForms kSpanishForms;
extern const LanguageForms kItalianForms;
extern const LanguageForms kRussianForms;
extern const LanguageForms kCzechForms;
