#pragma once

#include "tools/String.h"

/// Languages of the string table.
enum _LANGUAGE { LANGUAGE_ENGLISH = 0, LANGUAGE_FRENCH = 1 };

/// The language of LoadStringW. At first use it comes from the environment (LANGUAGE, LC_ALL, LC_MESSAGES, LANG): French
/// for "fr…", else English.
ZEL_API _LANGUAGE GetLanguage();
ZEL_API void SetLanguage(_LANGUAGE language);

/// Text of an id in a language; English when the language lacks it, null when the table does. Lives for ever.
ZEL_API const CXTString<wchar_t>* FindString(unsigned int id, _LANGUAGE language);
