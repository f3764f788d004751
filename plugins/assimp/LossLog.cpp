#include "LossLog.h"

namespace {

const wchar_t* const s_texts[LOSS_COUNT] = {
    L"Cameras left out: %zu",
    L"Lights left out: %zu",
    L"Nodes whose animation is left out: %zu",
    L"Materials whose animation is left out: %zu",
    L"Weights left out: %zu",
    L"Weights that belong to no bone left out: %zu",
    L"Dummies left out: %zu",
    L"Curves left out: %zu",
    L"Objects of points alone left out: %zu",
    L"Objects whose specified normals are left out: %zu",
    L"Sets of texture coordinates left out: %zu",
    L"Sets of vertex colors left out: %zu",
    L"Materials left out: %zu",
    L"Maps left out: %zu",
    L"Projections of maps left out: %zu",
    L"Colors of materials with an image left out: %zu",
    L"Alpha images of maps left out: %zu",
    L"Images that could not be embedded: %zu",
    L"Faces with a corner out of range left out: %zu",
    L"Nodes whose shear the animation loses: %zu",
};

}

void LossLog::Report(CIoOptions& options) const
{
    for (const CXTString<wchar_t>& line : m_lines)
        options.AddLogInfo(IoLogInfo::WARNING, line);
    for (std::size_t loss = 0; loss < LOSS_COUNT; loss++)
        if (m_counts[loss] > 0) {
            CXTString<wchar_t> text;
            text.FormatString(s_texts[loss], m_counts[loss]);
            options.AddLogInfo(IoLogInfo::WARNING, text);
        }
}
