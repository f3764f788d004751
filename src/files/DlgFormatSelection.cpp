#include "files/DlgFormatSelection.h"

CDlgFormatSelection::CDlgFormatSelection(CWnd* parent, unsigned int kind, bool reading)
    : m_parent(parent), m_reading(reading), m_formats(fileGetExtensions(kind, reading ? FILE_KIND_READ : FILE_KIND_WRITE))
{
    title = CXTString<wchar_t>(L"Formats");
    Add(CONTROL_LIST, CONTROL_FORMATS, L"&Format");
    Add(CONTROL_BUTTON, CONTROL_PROPERTIES, L"&Settings...", true);
}

CDlgFormatSelection::~CDlgFormatSelection() = default;

void CDlgFormatSelection::OnInit()
{
    CControl& list = *Find(CONTROL_FORMATS);
    list.items.clear();
    list.selected = -1;
    for (const CFileExt& format : m_formats) {
        if (format.fileClass == m_class)
            list.selected = static_cast<int>(list.items.size());
        list.items.push_back(format.description + L" (*" + format.GetMainExtension() + L")");
    }
    if (list.selected < 0 && !m_formats.empty())
        list.selected = 0;
    OnControl(CONTROL_FORMATS);
}

void CDlgFormatSelection::OnControl(unsigned int id)
{
    if (id == CONTROL_FORMATS) {
        const int selected = Find(CONTROL_FORMATS)->selected;
        const bool valid = selected >= 0 && selected < static_cast<int>(m_formats.size());
        m_class = valid ? m_formats[selected].fileClass : 0;
        Find(CONTROL_PROPERTIES)->enabled = valid;
    } else if (id == CONTROL_PROPERTIES && m_class) {
        CCustomData data;
        if (const CCustomData* const own = m_data.GetCustomData(m_class))
            data = *own;
        ShowFormatProperty(m_reading, data);
    }
}

void CDlgFormatSelection::ShowFormatProperty(int, CCustomData&) {}

bool CDlgFormatSelection::DoModal() { return RunDialog(m_parent, title, {this}); }
