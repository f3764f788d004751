#include "DialogWindow.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QVBoxLayout>

#include <windows/Dialog.h>

#include "DialogControls.h"
#include "Events.h"
#include "Questions.h"
#include "Text.h"

namespace {

class CDialogWindow : public QDialog, public IDialogPeer {
public:
    CDialogWindow(QWidget* parent, const QString& title, const std::vector<CDialogTable*>& pages);
    ~CDialogWindow() override;

    void ControlsChanged() override;
    void EndDialog(bool ok) override { ok ? Accept() : reject(); }
    bool SendKey(unsigned int key, unsigned int state);
    /// Of a script: "ok", "cancel", or "ID=VALUE" for a control.
    bool Answer(const QString& answer);

private:
    void AddPages(QVBoxLayout& layout, const std::vector<CDialogTable*>& pages);
    void AddButtons(QVBoxLayout& layout);
    void Accept();
    void Apply();
    /// Asks each page; false, with that page in front, when one refuses.
    bool Ask(bool (CDialogTable::*question)());

    std::vector<CDialogPage*> m_pages;
    QTabWidget* m_tabs = nullptr;
    QPushButton* m_apply = nullptr;
};

CDialogWindow::CDialogWindow(QWidget* parent, const QString& title, const std::vector<CDialogTable*>& pages) : QDialog(parent)
{
    setWindowTitle(title);
    auto* const layout = new QVBoxLayout(this);
    AddPages(*layout, pages);
    AddButtons(*layout);
    for (CDialogTable* const page : pages)
        page->peer = this;
    if (!m_pages.empty())
        m_pages.front()->Read();    // all sizes are known now
}

CDialogWindow::~CDialogWindow()
{
    for (CDialogPage* const page : m_pages) {
        page->GetTable().peer = nullptr;
        delete page;
    }
}

void CDialogWindow::AddPages(QVBoxLayout& layout, const std::vector<CDialogTable*>& pages)
{
    for (CDialogTable* const table : pages)
        m_pages.push_back(new CDialogPage(*table, [this] {
            if (m_apply)
                m_apply->setEnabled(true);
            ControlsChanged();
        }));
    if (m_pages.size() == 1) {
        layout.addWidget(m_pages.front(), 1);
        if (windowTitle().isEmpty())
            setWindowTitle(ToQt(pages.front()->title));
        return;
    }
    m_tabs = new QTabWidget(this);
    for (CDialogPage* const page : m_pages) {
        auto* const around = new QWidget;
        (new QVBoxLayout(around))->addWidget(page);
        m_tabs->addTab(around, ToQt(page->GetTable().title));
    }
    m_tabs->setUsesScrollButtons(false);    // every page is seen: the sheet is as wide as its tabs
    for (const auto& [key, step] : {std::pair{Qt::Key_PageDown, 1}, std::pair{Qt::Key_PageUp, -1}}) {
        auto* const turn = new QShortcut(QKeySequence(Qt::CTRL | key), this);
        QObject::connect(turn, &QShortcut::activated, this, [this, step = step] {
            m_tabs->setCurrentIndex((m_tabs->currentIndex() + step + m_tabs->count()) % m_tabs->count());
        });
    }
    layout.addWidget(m_tabs, 1);
}

void CDialogWindow::AddButtons(QVBoxLayout& layout)
{
    auto* const box = new QDialogButtonBox(this);
    QPushButton* const ok = box->addButton(QDialogButtonBox::Ok);
    ok->setText(TableText(TEXT_OK));
    ok->setDefault(true);
    QObject::connect(ok, &QPushButton::clicked, this, [this] { Accept(); });
    bool hasCancel = false, hasApply = false;
    for (CDialogPage* const page : m_pages) {
        hasCancel |= page->GetTable().hasCancel;
        hasApply |= page->GetTable().hasApply;
    }
    if (hasCancel) {
        QPushButton* const cancel = box->addButton(QDialogButtonBox::Cancel);
        cancel->setText(TableText(TEXT_CANCEL));
        QObject::connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    }
    if (hasApply) {
        m_apply = box->addButton(QDialogButtonBox::Apply);
        m_apply->setText(TableText(TEXT_APPLY));
        m_apply->setEnabled(false);
        QObject::connect(m_apply, &QPushButton::clicked, this, [this] { Apply(); });
    }
    layout.addWidget(box);
}

void CDialogWindow::ControlsChanged()
{
    for (CDialogPage* const page : m_pages)
        page->Read();
}

bool CDialogWindow::Ask(bool (CDialogTable::*question)())
{
    const CEventScope scope;
    for (std::size_t i = 0; i < m_pages.size(); i++)
        if (!(m_pages[i]->GetTable().*question)()) {
            if (m_tabs)
                m_tabs->setCurrentIndex(static_cast<int>(i));
            ControlsChanged();
            return false;
        }
    ControlsChanged();
    return true;
}

void CDialogWindow::Accept()
{
    if (Ask(&CDialogTable::OnOk))
        accept();
}

void CDialogWindow::Apply() { m_apply->setEnabled(!Ask(&CDialogTable::OnApply)); }

bool CDialogWindow::SendKey(unsigned int key, unsigned int state)
{
    for (CDialogPage* const page : m_pages)
        if (const unsigned int id = page->isAncestorOf(focusWidget()) ? page->GetFocusedControl() : 0) {
            const CEventScope scope;
            if (page->GetTable().OnKey(id, key, state)) {
                ControlsChanged();
                return true;
            }
        }
    return false;
}

bool CDialogWindow::Answer(const QString& answer)
{
    if (answer == QLatin1String("ok"))
        Accept();
    else if (answer == QLatin1String("cancel"))
        reject();
    else {
        const unsigned int id = answer.section(QLatin1Char('='), 0, 0).toUInt();
        for (CDialogPage* const page : m_pages)
            if (page->SetValue(id, answer.section(QLatin1Char('='), 1)))
                return true;
        return false;
    }
    return true;
}

}

bool RunDialogWindow(QWidget* parent, const QString& title, const std::vector<CDialogTable*>& pages)
{
    const CEventScope scope;
    CDialogWindow dialog(parent, title, pages);
    const COpenQuestion question(dialog, {L"dialog", FromQt(dialog.windowTitle()), {}, pages},
                                 [&dialog](const QString& answer) { return dialog.Answer(answer); });
    return dialog.exec() == QDialog::Accepted;
}

bool SendDialogKey(QWidget* window, unsigned int key, unsigned int state)
{
    auto* const dialog = dynamic_cast<CDialogWindow*>(window);
    return dialog && dialog->SendKey(key, state);
}
