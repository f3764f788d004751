#pragma once

#include <QString>

#include <windows/Window.h>

// Texts, points and colours between this system and Qt.

QString ToQt(const CXTString<wchar_t>& text);
CXTString<wchar_t> FromQt(const QString& text);
/// Of the string table.
QString TableText(unsigned int id);

/// Text with the help mark-up (<k> key, <b> bold, <i> and <e> emphasis, <br> and line ends) as rich text; anything else shows as it stands.
QString ToRichText(const CXTString<wchar_t>& text);
/// The same without the marks.
QString ToPlainText(const CXTString<wchar_t>& text);
/// Without the '&' of access keys.
QString WithoutAccessKey(const QString& text);

/// Numbers of this module's own texts.
enum ModuleText : unsigned int {
    TEXT_OK = 9800,
    TEXT_CANCEL,
    TEXT_APPLY,
    TEXT_YES,
    TEXT_NO,
    TEXT_CLOSE,
    TEXT_COPY,
    TEXT_SAVE,
    TEXT_NOT_AGAIN,
    TEXT_SAVE_REPORT,
    TEXT_ALL_FILES,
    TEXT_CANNOT_WRITE = 7381,
    TEXT_PROGRAM = 7470,
};
