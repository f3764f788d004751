#include "io/3DDlgFormatSelection.h"

#include "io/3DIo.h"

C3DDlgFormatSelection::~C3DDlgFormatSelection() = default;

void C3DDlgFormatSelection::ShowFormatProperty(int reading, CCustomData& data)
{
    const unsigned int fileClass = GetCurrentClass();
    CFileExt format;
    if (fileGetExtensionInfo(fileClass, &format) && format.GetFamily() == FILE_FAMILY_3D &&
        C3DIo::DisplayFormatDialog(fileClass, reading != 0, &data, GetParent())) {
        GetFormatData().SetCustomData(fileClass, data);
        return;
    }
    CDlgFormatSelection::ShowFormatProperty(reading, data);
}
