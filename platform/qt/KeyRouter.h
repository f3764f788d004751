#pragma once

#include <set>

#include <QObject>

class QKeyEvent;
class QWidget;

/// Takes keys to the windows before Qt's widgets get them, and knows which are down.
///
/// A window that has the focus hears of a key first, then those around it: the frame finds its command. Text fields keep their keys, and trees and
/// lists those that move in them. What nobody uses goes Qt's way.
class CKeyRouter : public QObject {
public:
    CKeyRouter();
    bool IsDown(unsigned int key) const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    static bool Send(QWidget* focus, const QKeyEvent& event);
    void Note(const QKeyEvent& event);

    std::set<unsigned int> m_down;
};
