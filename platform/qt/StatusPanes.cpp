#include "StatusPanes.h"

#include <QLabel>
#include <QMainWindow>
#include <QMouseEvent>
#include <QStatusBar>

#include <windows/Frame.h>

#include "Events.h"
#include "Text.h"

namespace {

class CPaneLabel : public QLabel {
public:
    CPaneLabel(CFrameWndEx* frame, int pane) : m_frame(frame), m_pane(pane) {}

protected:
    void mousePressEvent(QMouseEvent* event) override { Click(*event, false); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { Click(*event, true); }

private:
    void Click(const QMouseEvent& event, bool doubleClick)
    {
        const CEventScope scope;
        if (event.button() == Qt::LeftButton && m_frame->GetStatusBar())
            m_frame->GetStatusBar()->OnItemClick(m_pane, doubleClick);
    }

    CFrameWndEx* m_frame;
    int m_pane;
};

}

void CStatusPanes::Update()
{
    const CCommandStatusBar* const bar = m_frame->GetStatusBar();
    if (!bar)
        return;
    std::vector<Shape> shape;
    for (const auto& pane : bar->GetPanes())
        shape.push_back({pane.style, pane.width});
    if (shape != m_shape) {
        m_shape = std::move(shape);
        Fill();
    }
    for (std::size_t i = 0; i < m_labels.size(); i++)
        m_labels[i]->setText(ToRichText(bar->OnDrawPane(static_cast<int>(i))));
    m_window->statusBar()->setVisible(!m_hidden);
}

void CStatusPanes::Hide(bool on)
{
    m_hidden = on;
    if (m_frame->GetStatusBar())
        m_window->statusBar()->setVisible(!on);
}

void CStatusPanes::Fill()
{
    QStatusBar& bar = *m_window->statusBar();
    for (QLabel* const label : m_labels) {
        bar.removeWidget(label);
        DeleteLater(label);
    }
    m_labels.clear();
    for (std::size_t i = 0; i < m_shape.size(); i++) {
        auto* const label = new CPaneLabel(m_frame, static_cast<int>(i));
        const bool stretch = m_shape[i].style & STATUSPANE_STRETCH;
        label->setMinimumWidth(m_shape[i].width);
        label->setTextFormat(Qt::RichText);
        if (m_shape[i].style & STATUSPANE_FRAMED)
            label->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        if (stretch)    // a long text is cut off rather than widening the window
            label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        bar.addWidget(label, stretch);
        m_labels.push_back(label);
    }
}
