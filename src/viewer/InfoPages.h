#pragma once

// What the sheets about nodes and about materials have in common.

#include <memory>
#include <vector>

#include "tools/CustomData.h"
#include "tools/Object.h"
#include "tools/String.h"
#include "windows/CustomList.h"
#include "windows/Dialog.h"

/// Numbers of the sheets' controls.
enum InfoControl : unsigned int {
    INFO_SPECULAR_FACTOR = 9031,
    INFO_AMBIENT_FACTOR,
    INFO_DIFFUSE_FACTOR,
    INFO_SMOOTH_ANGLE,
    INFO_TRANSPARENCY,
    INFO_MATERIAL_NAME,
    INFO_OPENED_PICTURE,
    INFO_AMBIENT_COLOR = 9049,
    INFO_DIFFUSE_COLOR = 9052,
    INFO_MAPS = 9063,
    INFO_MAP_PICTURE = 9064,
    INFO_MODIFY_FILE = 9066,
    INFO_ADDITIONAL_DATA = 9068,
    INFO_BOX = 9069,
    INFO_ELEMENTS = 9070,
    INFO_ARRAYS = 9071,
    INFO_MATERIALS = 9072,
    INFO_MATERIAL_COUNT = 9073,
    INFO_NODE_NAME = 9074,
    INFO_RELATIVE_MATRIX = 9075,
    INFO_COUNTS = 9076,
    INFO_MATRIX = 9077,
    INFO_OBJECT_TYPE = 9078,
    INFO_OPEN_BITMAP = 9079,
    INFO_SPECULAR_COLOR = 9101,
};

/// Gives back a reference.
struct CReferenceEnd {
    void operator()(const CInstanciatedObject* object) const { DeleteMe(object); }
};
/// Keeps what is shown as long as it is shown, whatever becomes of its scene meanwhile.
template <class T> using CReference = std::unique_ptr<T, CReferenceEnd>;

template <class T> CReference<T> Share(T* object)
{
    if (object)
        object->AddRef();
    return CReference<T>(object);
}

/// A list whose texts are all there.
class CTextTable : public CCustomList {
public:
    using Row = std::vector<CXTString<wchar_t>>;

    void SetRows(std::vector<Row> rows);
    CXTString<wchar_t> GetCellText(int row, int column) const override;

private:
    std::vector<Row> m_texts;
};

/// Page of the custom data of a node or a material.
class CNodeAdditionalData : public CDialogTable {
public:
    /// Null for none.
    explicit CNodeAdditionalData(const CCustomData* data);
};
