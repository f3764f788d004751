#include "Choosers.h"

#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QTextEdit>
#include <QTreeView>
#include <QVBoxLayout>

#include "Events.h"
#include "Questions.h"
#include "Text.h"

// Files

namespace {

QString FilterLine(const CFileFilter& filter)
{
    QStringList patterns;
    for (const auto& pattern : filter.patterns)
        patterns << ToQt(pattern);
    QString name = ToQt(filter.name);
    if (const qsizetype bracket = name.indexOf(QLatin1String(" (*")); bracket > 0)
        name.truncate(bracket);    // Qt wants the patterns there, and nowhere else
    return QStringLiteral("%1 (%2)").arg(name.replace(QLatin1Char('('), QLatin1Char('[')).replace(QLatin1Char(')'), QLatin1Char(']')),
                                         patterns.isEmpty() ? QStringLiteral("*") : patterns.join(QLatin1Char(' ')));
}

// Of the first pattern, without its point.
QString SuffixOf(const CFileFilter& filter)
{
    const QString pattern = filter.patterns.empty() ? QString() : ToQt(filter.patterns.front());
    const QString suffix = pattern.startsWith(QLatin1String("*.")) ? pattern.mid(2) : QString();
    return suffix.contains(QLatin1Char('*')) ? QString() : suffix;
}

// A script's hand in a dialog of files: "cancel", or paths with line feeds between.
class CFileDialog : public QFileDialog {
public:
    using QFileDialog::QFileDialog;

    QStringList Chosen() const { return m_answer.isEmpty() ? selectedFiles() : m_answer; }
    bool Answer(const QString& answer)
    {
        if (answer == QLatin1String("cancel"))
            reject();
        else {
            m_answer = answer.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            done(m_answer.isEmpty() ? Rejected : Accepted);
        }
        return true;
    }

private:
    QStringList m_answer;
};

COpenQuestion::Answer AnswerByPaths(CFileDialog& dialog)
{
    return [&dialog](const QString& answer) { return dialog.Answer(answer); };
}

}

bool ChooseFilesWindow(QWidget* parent, const CFileDialogRequest& request, std::vector<CFileNameSpec>& chosen)
{
    const CEventScope scope;
    CFileDialog dialog(parent, ToQt(request.title));
    dialog.setAcceptMode(request.reading ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(!request.reading ? QFileDialog::AnyFile : request.several ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    QStringList lines;
    qsizetype first = 0;
    for (const CFileFilter& filter : request.filters) {
        if (filter.fileClass && filter.fileClass == request.filter)
            first = lines.size();
        lines << FilterLine(filter);
    }
    if (lines.isEmpty())
        lines << TableText(TEXT_ALL_FILES) + QStringLiteral(" (*)");
    dialog.setNameFilters(lines);
    const auto follow = [&](const QString& line) {
        const qsizetype index = lines.indexOf(line);
        if (!request.reading && index >= 0 && index < static_cast<qsizetype>(request.filters.size()))
            dialog.setDefaultSuffix(SuffixOf(request.filters[static_cast<std::size_t>(index)]));
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    dialog.selectNameFilter(lines[first]);
    follow(lines[first]);
    if (!request.start.IsEmpty()) {
        const QFileInfo start(ToQt(request.start.GetFullName()));
        dialog.setDirectory(start.isDir() ? start.absoluteFilePath() : start.absolutePath());
        if (!start.isDir())
            dialog.selectFile(start.fileName());
    }
    const COpenQuestion question(dialog, {L"files", request.title, {}, {}}, AnswerByPaths(dialog));
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const qsizetype index = lines.indexOf(dialog.selectedNameFilter());
    const unsigned int fileClass = index >= 0 && index < static_cast<qsizetype>(request.filters.size())
                                       ? request.filters[static_cast<std::size_t>(index)].fileClass
                                       : 0;
    chosen.clear();
    for (const QString& file : dialog.Chosen())
        chosen.push_back(CFileNameSpec(FromQt(file), fileClass));
    return !chosen.empty();
}

bool ChooseFoldersWindow(QWidget* parent, const QString& title, bool several, std::vector<CXTString<wchar_t>>& folders)
{
    const CEventScope scope;
    CFileDialog dialog(parent, title);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    if (several) {    // no system's own dialog gives several
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        for (QAbstractItemView* const view : dialog.findChildren<QAbstractItemView*>())
            if (view->objectName() == QLatin1String("listView") || view->objectName() == QLatin1String("treeView"))
                view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    }
    if (!folders.empty() && !folders.front().IsEmpty())
        dialog.setDirectory(ToQt(folders.front()));
    const COpenQuestion question(dialog, {L"folders", FromQt(title), {}, {}}, AnswerByPaths(dialog));
    if (dialog.exec() != QDialog::Accepted)
        return false;
    folders.clear();
    for (const QString& folder : dialog.Chosen())
        folders.push_back(FromQt(folder));
    return !folders.empty();
}

// Texts

static QString ToTable(const CXTString<wchar_t>& text)
{
    QString table = QStringLiteral("<table cellpadding='3'>");
    for (const QString& line : ToQt(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        table += QLatin1String("<tr>");
        for (const QString& cell : line.split(QLatin1Char('\t')))
            table += QStringLiteral("<td>%1</td>").arg(ToRichText(FromQt(cell)));
        table += QLatin1String("</tr>");
    }
    return table + QLatin1String("</table>");
}

static void SaveReport(QWidget* parent, const QString& title, const QString& text)
{
    const QString path = QFileDialog::getSaveFileName(parent, title, title + QStringLiteral(".txt"));
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        QMessageBox::warning(parent, title, TableText(TEXT_CANNOT_WRITE).replace(QLatin1String("%s"), path));
}

void ShowReportWindow(QWidget* parent, const QString& title, const CXTString<wchar_t>& text)
{
    const CEventScope scope;
    QDialog dialog(parent);
    dialog.setWindowTitle(title);
    dialog.resize(720, 480);
    auto* const layout = new QVBoxLayout(&dialog);
    auto* const shown = new QTextEdit(&dialog);
    shown->setReadOnly(true);
    shown->setTabChangesFocus(true);
    const bool isTable = text.Find(L'\t') >= 0;
    if (isTable)
        shown->setHtml(ToTable(text));
    else
        shown->setPlainText(ToQt(text));
    layout->addWidget(shown);
    auto* const box = new QDialogButtonBox(&dialog);
    const QString plain = isTable ? ToPlainText(text) : ToQt(text);
    QPushButton* const copy = box->addButton(TableText(TEXT_COPY), QDialogButtonBox::ActionRole);
    QObject::connect(copy, &QPushButton::clicked, &dialog, [&] { QGuiApplication::clipboard()->setText(plain); });
    QPushButton* const save = box->addButton(TableText(TEXT_SAVE), QDialogButtonBox::ActionRole);
    QObject::connect(save, &QPushButton::clicked, &dialog, [&] { SaveReport(&dialog, TableText(TEXT_SAVE_REPORT), plain); });
    QPushButton* const close = box->addButton(TableText(TEXT_CLOSE), QDialogButtonBox::RejectRole);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::reject);
    close->setDefault(true);
    close->setFocus();
    layout->addWidget(box);
    const COpenQuestion question(dialog, {L"report", FromQt(title), text, {}}, [&](const QString& answer) {
        if (answer == QLatin1String("ok") || answer == QLatin1String("cancel"))
            dialog.reject();
        return !dialog.isVisible();
    });
    dialog.exec();
}

MessageAnswer ShowMessageWindow(QWidget* parent, const QString& title, const CXTString<wchar_t>& text, MessageButtons buttons)
{
    struct Button {
        MessageAnswer answer;
        unsigned int text;
        QMessageBox::StandardButton qt;
        const char* name;    // in scripts
    };
    constexpr Button OK{ANSWER_OK, TEXT_OK, QMessageBox::Ok, "ok"}, CANCEL{ANSWER_CANCEL, TEXT_CANCEL, QMessageBox::Cancel, "cancel"},
        YES{ANSWER_YES, TEXT_YES, QMessageBox::Yes, "yes"}, NO{ANSWER_NO, TEXT_NO, QMessageBox::No, "no"};
    std::vector<Button> offered;
    switch (buttons) {
    case MESSAGE_OK_CANCEL: offered = {OK, CANCEL}; break;
    case MESSAGE_YES_NO: offered = {YES, NO}; break;
    case MESSAGE_YES_NO_CANCEL: offered = {YES, NO, CANCEL}; break;
    default: offered = {OK};
    }
    const CEventScope scope;
    QMessageBox box(parent);
    box.setWindowTitle(title.isEmpty() ? TableText(TEXT_PROGRAM) : title);
    box.setTextFormat(Qt::RichText);
    box.setText(ToRichText(text));
    box.setIcon(buttons == MESSAGE_OK ? QMessageBox::Information : QMessageBox::Question);
    for (const Button& button : offered)
        box.addButton(button.qt)->setText(TableText(button.text));
    const COpenQuestion question(box, {L"message", FromQt(box.windowTitle()), text, {}}, [&](const QString& name) {
        for (const Button& button : offered)
            if (name == QLatin1String(button.name)) {
                box.button(button.qt)->click();
                return true;
            }
        return false;
    });
    const int answer = box.exec();
    for (const Button& button : offered)
        if (answer == button.qt)
            return button.answer;
    return ANSWER_CANCEL;
}
