#pragma once

#include "io/SceneOptions.h"
#include "io/Texts.h"

/// Tells that a face was lost, or the data of one in a channel, because its corners are not there.
inline void LogBadFace(CIoOptions& options, unsigned int face)
{
    CXTString<wchar_t> text;
    text.FormatString(L"%s (face %d)", LoadText(TEXT_INVALID_FACE_INDEX).c_str(), face);
    options.AddLogInfo(IoLogInfo::WARNING, text);
}
