#include "Progress.h"

#include <memory>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <tools/Progress.h>

#include "Events.h"
#include "Text.h"

namespace {

constexpr int SHOW_AFTER = 300, PUMP_EVERY = 30;    // milliseconds
constexpr int STEPS = 1000;

// Keeps what the user does away from all other windows, from the start: the dialog comes later, if at all.
class CInputStop : public QObject {
public:
    explicit CInputStop(QWidget* allowed) : m_allowed(allowed) { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::ShortcutOverride:
        case QEvent::Close:
        case QEvent::DragEnter:
        case QEvent::Drop:
        case QEvent::ContextMenu: break;
        default: return false;
        }
        if (!object->isWidgetType() || static_cast<QWidget*>(object)->window() == m_allowed)
            return false;
        if (event->type() == QEvent::Close)
            event->ignore();
        return true;
    }

private:
    QWidget* m_allowed;
};

class CProgressDialog : public QDialog {
public:
    CProgressDialog(QWidget* parent, const QString& title, bool& cancelled) : QDialog(parent), m_cancelled(cancelled)
    {
        setWindowTitle(title);
        setWindowModality(Qt::ApplicationModal);
        auto* const layout = new QVBoxLayout(this);
        m_text = new QLabel(title, this);
        m_text->setMinimumWidth(360);
        m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        m_bar = new QProgressBar(this);
        m_bar->setRange(0, STEPS);
        m_cancel = new QPushButton(TableText(TEXT_CANCEL), this);
        layout->addWidget(m_text);
        layout->addWidget(m_bar);
        layout->addWidget(m_cancel, 0, Qt::AlignRight);
        QObject::connect(m_cancel, &QPushButton::clicked, this, [this] { reject(); });
    }

    void Tell(const QString& text, double fraction)
    {
        m_text->setText(m_text->fontMetrics().elidedText(text, Qt::ElideMiddle, std::max(m_text->width(), 360)));
        m_bar->setValue(static_cast<int>(fraction * STEPS));
    }

protected:
    void reject() override    // the button, Esc, and the window's own
    {
        m_cancelled = true;
        m_cancel->setEnabled(false);
    }
    void closeEvent(QCloseEvent* event) override
    {
        reject();
        event->ignore();
    }

private:
    bool& m_cancelled;
    QLabel* m_text;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
};

class CProgressSink : public IProgressSink {
public:
    CProgressSink(QWidget* parent, const QString& title) : m_dialog(parent, title, m_cancelled), m_stop(&m_dialog)
    {
        m_total.start();
        m_sincePump.start();
    }

    bool OnProgress(const CXTString<wchar_t>& text, double fraction) override
    {
        if (m_pumping || m_sincePump.elapsed() < PUMP_EVERY)
            return !m_cancelled;
        if (!m_dialog.isVisible() && m_total.elapsed() >= SHOW_AFTER)
            m_dialog.show();
        m_dialog.Tell(ToPlainText(text), fraction);
        m_pumping = true;
        {
            const CEventScope scope(CEventScope::QUIET);    // what is posted waits for the end of the work
            QCoreApplication::processEvents();
        }
        m_pumping = false;
        m_sincePump.start();
        return !m_cancelled;
    }

private:
    bool m_cancelled = false, m_pumping = false;
    CProgressDialog m_dialog;
    CInputStop m_stop;
    QElapsedTimer m_total, m_sincePump;
};

}

IProgressSink* CreateProgressWindow(QWidget* parent, const QString& title) { return new CProgressSink(parent, title); }
