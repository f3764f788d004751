#pragma once

#include <memory>
#include <vector>

class CFrameWndEx;
class CCustomToolbar;
class QMainWindow;
class QToolBar;

/// The tool bars of a frame.
class CToolButtons {
public:
    CToolButtons(CFrameWndEx* frame, QMainWindow* window) : m_frame(frame), m_window(window) {}

    /// Makes bars anew whose buttons are others; states and texts alone otherwise.
    void Update();
    /// In full screen.
    void Hide(bool on);

private:
    struct Shape;
    struct Bar;

    void Fill(Bar& bar);
    void AddButton(Bar& bar, std::size_t index);
    void Press(unsigned int id);
    static void ShowStates(Bar& bar);

    CFrameWndEx* m_frame;
    QMainWindow* m_window;
    std::vector<std::shared_ptr<Bar>> m_bars;
    bool m_hidden = false;
};
