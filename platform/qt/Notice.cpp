#include "Notice.h"

#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QStyle>
#include <QTimer>
#include <QToolButton>

#include <tools/ProfileFile.h>

#include "Text.h"

namespace {

constexpr wchar_t SECTION[] = L"Hidden notices";

CXTString<wchar_t> GetKey(unsigned int id)
{
    CXTString<wchar_t> key;
    key.FormatString(L"%u", id);
    return key;
}

// A child of the window, so that it moves with it and needs no place of its own on the screen. Over GL it has a native window as GL has.
class CBubble : public QFrame {
public:
    CBubble(QWidget* parent, unsigned int id, const QString& title, const QString& text) : QFrame(parent)
    {
        setAttribute(Qt::WA_NativeWindow);
        setAttribute(Qt::WA_DeleteOnClose);
        setAutoFillBackground(true);
        setBackgroundRole(QPalette::ToolTipBase);
        setForegroundRole(QPalette::ToolTipText);
        setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
        auto* const layout = new QGridLayout(this);
        auto* const head = new QLabel(QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()), this);
        auto* const close = new QToolButton(this);
        close->setAutoRaise(true);
        close->setFocusPolicy(Qt::NoFocus);
        close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
        close->setAccessibleName(TableText(TEXT_CLOSE));
        QObject::connect(close, &QToolButton::clicked, this, [this] { this->close(); });
        auto* const body = new QLabel(text, this);
        body->setTextFormat(Qt::RichText);
        body->setWordWrap(true);
        body->setMinimumWidth(std::min(320, parent->width() - 40));
        layout->addWidget(head, 0, 0);
        layout->addWidget(close, 0, 1, Qt::AlignRight | Qt::AlignTop);
        layout->addWidget(body, 1, 0, 1, 2);
        layout->setColumnStretch(0, 1);
        for (QLabel* const label : {head, body})
            label->setForegroundRole(QPalette::ToolTipText);
        if (id)
            AddChoice(*layout, id);
        parent->installEventFilter(this);
        Place();
        show();
        raise();
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Resize)
            Place();
        return QFrame::eventFilter(object, event);
    }

private:
    void AddChoice(QGridLayout& layout, unsigned int id)
    {
        auto* const never = new QCheckBox(TableText(TEXT_NOT_AGAIN), this);
        never->setFocusPolicy(Qt::NoFocus);
        QObject::connect(never, &QCheckBox::toggled, this, [id](bool on) { CProfileFile().WriteProfileInt(SECTION, GetKey(id), on); });
        layout.addWidget(never, 2, 0, 1, 2);
    }

    // In the middle near the foot of the window, clear of a status bar.
    void Place()
    {
        adjustSize();
        const QWidget& around = *parentWidget();
        move((around.width() - width()) / 2, std::max(around.height() - height() - 3 * fontMetrics().height(), 0));
    }
};

}

bool ShowNoticeBubble(QWidget* parent, unsigned int id, unsigned int milliseconds, const CXTString<wchar_t>& title,
                      const CXTString<wchar_t>& text)
{
    static QPointer<CBubble> last;
    if (!parent || (id && CProfileFile().GetProfileInt(SECTION, GetKey(id), 0)))
        return false;
    if (last)
        last->close();    // one at a time
    last = new CBubble(parent, id, ToPlainText(title), ToRichText(text));
    if (milliseconds)
        QTimer::singleShot(static_cast<int>(milliseconds), last, [bubble = last.data()] { bubble->close(); });
    return true;
}
