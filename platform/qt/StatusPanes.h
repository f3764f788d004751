#pragma once

#include <vector>

class CFrameWndEx;
class QLabel;
class QMainWindow;

/// The status bar of a frame.
class CStatusPanes {
public:
    CStatusPanes(CFrameWndEx* frame, QMainWindow* window) : m_frame(frame), m_window(window) {}

    void Update();
    void Hide(bool on);

private:
    struct Shape {
        unsigned int style;
        int width;
        friend bool operator==(const Shape&, const Shape&) = default;
    };
    void Fill();

    CFrameWndEx* m_frame;
    QMainWindow* m_window;
    std::vector<Shape> m_shape;
    std::vector<QLabel*> m_labels;
    bool m_hidden = false;
};
