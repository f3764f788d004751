#include "DialogControls.h"

#include <map>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>

#include <windows/CustomList.h>

#include "Events.h"
#include "ListView.h"
#include "Peer.h"
#include "Pictures.h"
#include "Text.h"

namespace {

constexpr int USUAL_LINES = 6;

// Kinds whose text stands in front of them.
bool HasLabel(const CControl& control)
{
    switch (control.kind) {
    case CONTROL_EDIT:
    case CONTROL_MEMO:
    case CONTROL_LIST:
    case CONTROL_COMBO:
    case CONTROL_SLIDER:
    case CONTROL_SPIN:
    case CONTROL_COLOR:
    case CONTROL_PICTURE:
    case CONTROL_TABLE: return !control.text.IsEmpty();
    default: return false;
    }
}

bool Grows(ControlKind kind) { return kind == CONTROL_MEMO || kind == CONTROL_LIST || kind == CONTROL_TABLE; }

void SetLines(QWidget& widget, const CControl& control)
{
    const int lines = control.height > 0 ? control.height : USUAL_LINES;
    widget.setMinimumHeight(lines * (widget.fontMetrics().height() + 2) + 8);
}

QIcon ColorIcon(const CRGBColor& color)
{
    QPixmap pixels(32, 16);
    pixels.fill(QColor(color.red, color.green, color.blue));
    return QIcon(pixels);
}

QStringList ItemTexts(const CControl& control)
{
    QStringList texts;
    for (const auto& item : control.items)
        texts << ToQt(item);
    return texts;
}

}

CDialogPage::CDialogPage(CDialogTable& table, std::function<void()> changed) : m_table(table), m_changed(std::move(changed))
{
    (new QVBoxLayout(this))->setContentsMargins({});
    Read();
}

CDialogPage::~CDialogPage()
{
    for (const CControl& control : m_table.controls)
        if (control.table && CPeer::Of(control.table))
            control.table->SetPeer(nullptr);
}

std::vector<CDialogPage::Shape> CDialogPage::GetShape() const
{
    std::vector<Shape> shape;
    for (const CControl& control : m_table.controls)
        shape.push_back({control.kind, control.id, control.group, control.row});
    return shape;
}

void CDialogPage::Read()
{
    if (m_reading)
        return;
    m_reading = true;
    if (std::vector<Shape> shape = GetShape(); shape != m_shape || !m_content) {
        m_shape = std::move(shape);
        Build();
    }
    for (std::size_t i = 0; i < m_fields.size(); i++) {
        const CControl& control = m_table.controls[i];
        const Field& field = m_fields[i];
        for (QWidget* const widget : {field.widget, field.label})
            if (widget) {
                widget->setVisible(control.visible);
                widget->setEnabled(control.enabled);
            }
        if (field.label)
            static_cast<QLabel*>(field.label)->setText(ToQt(control.text));
        if (field.show)
            field.show(control);
    }
    m_reading = false;
}

unsigned int CDialogPage::GetFocusedControl() const
{
    for (std::size_t i = 0; i < m_fields.size(); i++)
        if (m_fields[i].widget && (m_fields[i].widget->hasFocus() || m_fields[i].widget->isAncestorOf(focusWidget())))
            return m_table.controls[i].id;
    return 0;
}

void CDialogPage::UserChanges(std::size_t index, const std::function<void(CControl&)>& write)
{
    if (m_reading || index >= m_table.controls.size())
        return;
    write(m_table.controls[index]);
    const unsigned int id = m_table.controls[index].id;
    Tell([this, id] { m_table.OnControl(id); });
}

void CDialogPage::Tell(const std::function<void()>& handler)
{
    if (m_reading)
        return;
    const CEventScope scope;
    handler();
    m_changed();
}

static int FindEntry(const CControl& control, const QString& value)
{
    const qsizetype byText = ItemTexts(control).indexOf(value);
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    return byText >= 0 ? static_cast<int>(byText) : isNumber ? number : -1;
}

static bool Write(CControl& control, const QString& value)
{
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    switch (control.kind) {
    case CONTROL_CHECK:
    case CONTROL_CHECK3:
        control.mixed = false;
        control.checked = number != 0;
        return isNumber;
    case CONTROL_EDIT:
    case CONTROL_MEMO: control.value = FromQt(value); return !control.readOnly;
    case CONTROL_LIST:
    case CONTROL_COMBO: {
        const int entry = FindEntry(control, value);
        if (entry < -1 || entry >= static_cast<int>(control.items.size()))
            return false;
        control.selected = entry;
        return true;
    }
    case CONTROL_SLIDER:
    case CONTROL_SPIN:
        if (!isNumber || number < control.minimum || number > control.maximum)
            return false;
        control.number = number;
        return true;
    case CONTROL_COLOR: {
        const QStringList parts = value.split(QLatin1Char(' '));
        if (parts.size() != 3)
            return false;
        control.color = CRGBColor(static_cast<unsigned char>(parts[0].toUInt()), static_cast<unsigned char>(parts[1].toUInt()),
                                  static_cast<unsigned char>(parts[2].toUInt()), control.color.alpha);
        return true;
    }
    default: return control.kind == CONTROL_BUTTON;
    }
}

bool CDialogPage::SetValue(unsigned int id, const QString& value)
{
    CControl* const control = m_table.Find(id);
    if (!control || !control->visible || !control->enabled)
        return false;
    const auto index = static_cast<std::size_t>(control - m_table.controls.data());
    if (control->kind == CONTROL_RADIO) {
        PressRadio(index);
        return true;
    }
    CControl changed = *control;
    if (!Write(changed, value))
        return false;
    UserChanges(index, [&](CControl& present) { present = changed; });
    if (changed.kind == CONTROL_SLIDER)
        Tell([this, id] { m_table.OnSliderEnd(id); });
    return true;
}

// Radio buttons exclude each other by their group's number, wherever they stand.
void CDialogPage::PressRadio(std::size_t index)
{
    const unsigned int group = m_table.controls[index].group;
    for (CControl& other : m_table.controls)
        if (other.kind == CONTROL_RADIO && other.group == group)
            other.checked = false;
    UserChanges(index, [](CControl& control) { control.checked = true; });
}

// Layout: two columns, labels and what they stand in front of. Several controls of a row share the second one.

void CDialogPage::Build()
{
    if (m_content) {
        layout()->removeWidget(m_content);
        m_content->hide();
        DeleteLater(m_content);
    }
    m_content = new QWidget(this);
    layout()->addWidget(m_content);
    auto* const groups = new QVBoxLayout(m_content);
    m_fields.assign(m_table.controls.size(), {});

    QWidget* parent = new QWidget(m_content);
    QGridLayout* grid = new QGridLayout(parent);
    grid->setContentsMargins({});
    groups->addWidget(parent);
    bool grows = false;
    const auto& controls = m_table.controls;
    for (std::size_t first = 0; first < controls.size();) {
        if (controls[first].kind == CONTROL_GROUP) {
            auto* const group = new QGroupBox(m_content);
            m_fields[first] = {group, nullptr, [group](const CControl& control) { group->setTitle(ToQt(control.text)); }};
            grid = new QGridLayout(group);
            parent = group;
            groups->addWidget(group);
            first++;
            continue;
        }
        std::size_t last = first;
        while (last + 1 < controls.size() && controls[last + 1].row == controls[first].row && controls[last + 1].kind != CONTROL_GROUP)
            last++;
        AddRow(parent, *grid, first, last);
        for (std::size_t i = first; i <= last; i++)
            grows |= Grows(controls[i].kind);
        first = last + 1;
    }
    if (!grows)
        groups->addStretch(1);

    QWidget* before = nullptr;
    for (const Field& field : m_fields) {
        if (!field.widget || field.widget->focusPolicy() == Qt::NoFocus)
            continue;
        if (before)
            setTabOrder(before, field.widget);
        before = field.widget;
    }
}

void CDialogPage::AddRow(QWidget* parent, QGridLayout& grid, std::size_t first, std::size_t last)
{
    const int row = grid.rowCount();
    const bool labelled = HasLabel(m_table.controls[first]);
    QHBoxLayout* beside = nullptr;
    if (last > first) {
        beside = new QHBoxLayout;
        grid.addLayout(beside, row, labelled, 1, labelled ? 1 : 2);
    }
    for (std::size_t i = first; i <= last; i++) {
        const CControl& control = m_table.controls[i];
        Field& field = m_fields[i] = MakeField(parent, i);
        if (HasLabel(control)) {
            auto* const label = new QLabel(parent);
            label->setBuddy(field.widget);
            field.label = label;
            if (i == first)
                grid.addWidget(label, row, 0, Grows(control.kind) ? Qt::AlignTop : Qt::AlignVCenter);
            else
                beside->addWidget(label);
        }
        if (beside)
            beside->addWidget(field.widget, control.kind == CONTROL_EDIT || Grows(control.kind) || control.kind == CONTROL_SLIDER);
        else
            grid.addWidget(field.widget, row, labelled, 1, labelled ? 1 : 2);
        if (Grows(control.kind))
            grid.setRowStretch(row, 1);
    }
    if (beside && !labelled && m_table.controls[first].kind != CONTROL_LABEL)
        beside->addStretch(1);
}

CDialogPage::Field CDialogPage::MakeField(QWidget* parent, std::size_t index)
{
    switch (m_table.controls[index].kind) {
    case CONTROL_CHECK:
    case CONTROL_CHECK3: return MakeCheck(parent, index);
    case CONTROL_RADIO: return MakeRadio(parent, index);
    case CONTROL_EDIT: return MakeEdit(parent, index);
    case CONTROL_MEMO: return MakeMemo(parent, index);
    case CONTROL_BUTTON: return MakeButton(parent, index);
    case CONTROL_COLOR: return MakeColor(parent, index);
    case CONTROL_LIST: return MakeList(parent, index);
    case CONTROL_COMBO: return MakeCombo(parent, index);
    case CONTROL_SLIDER: return MakeSlider(parent, index);
    case CONTROL_SPIN: return MakeSpin(parent, index);
    case CONTROL_TABLE: return MakeTable(parent, index);
    case CONTROL_PICTURE: return MakePicture(parent, index);
    default: {
        auto* const label = new QLabel(parent);
        label->setWordWrap(true);
        return {label, nullptr, [label](const CControl& control) { label->setText(ToRichText(control.text)); }};
    }
    }
}

CDialogPage::Field CDialogPage::MakeCheck(QWidget* parent, std::size_t index)
{
    auto* const check = new QCheckBox(parent);
    check->setTristate(m_table.controls[index].kind == CONTROL_CHECK3);
    QObject::connect(check, &QCheckBox::clicked, this, [this, check, index] {
        UserChanges(index, [check](CControl& control) {
            control.checked = check->checkState() == Qt::Checked;
            control.mixed = check->checkState() == Qt::PartiallyChecked;
        });
    });
    return {check, nullptr, [check](const CControl& control) {
                check->setText(ToQt(control.text));
                check->setCheckState(control.mixed ? Qt::PartiallyChecked : control.checked ? Qt::Checked : Qt::Unchecked);
            }};
}

CDialogPage::Field CDialogPage::MakeRadio(QWidget* parent, std::size_t index)
{
    auto* const radio = new QRadioButton(parent);
    radio->setAutoExclusive(false);
    QObject::connect(radio, &QRadioButton::clicked, this, [this, index] { PressRadio(index); });
    return {radio, nullptr, [radio](const CControl& control) {
                radio->setText(ToQt(control.text));
                radio->setChecked(control.checked);
            }};
}

CDialogPage::Field CDialogPage::MakeEdit(QWidget* parent, std::size_t index)
{
    auto* const edit = new QLineEdit(parent);
    QObject::connect(edit, &QLineEdit::textEdited, this,
                     [this, index](const QString& text) { UserChanges(index, [&](CControl& control) { control.value = FromQt(text); }); });
    return {edit, nullptr, [edit](const CControl& control) {
                edit->setReadOnly(control.readOnly);
                if (const QString text = ToQt(control.value); text != edit->text())    // leaves the cursor where it is
                    edit->setText(text);
            }};
}

CDialogPage::Field CDialogPage::MakeMemo(QWidget* parent, std::size_t index)
{
    auto* const memo = new QPlainTextEdit(parent);
    memo->setTabChangesFocus(true);
    SetLines(*memo, m_table.controls[index]);
    QObject::connect(memo, &QPlainTextEdit::textChanged, this, [this, memo, index] {
        UserChanges(index, [memo](CControl& control) { control.value = FromQt(memo->toPlainText()); });
    });
    return {memo, nullptr, [memo](const CControl& control) {
                memo->setReadOnly(control.readOnly);
                if (const QString text = ToQt(control.value); text != memo->toPlainText())
                    memo->setPlainText(text);
            }};
}

CDialogPage::Field CDialogPage::MakeButton(QWidget* parent, std::size_t index)
{
    auto* const button = new QPushButton(parent);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, this, [this, index] { UserChanges(index, [](CControl&) {}); });
    return {button, nullptr, [button](const CControl& control) { button->setText(ToQt(control.text)); }};
}

CDialogPage::Field CDialogPage::MakeColor(QWidget* parent, std::size_t index)
{
    auto* const button = new QPushButton(parent);
    button->setAutoDefault(false);
    button->setIconSize({32, 16});
    QObject::connect(button, &QPushButton::clicked, this, [this, index] {
        const CRGBColor& present = m_table.controls[index].color;
        const QColor chosen = QColorDialog::getColor(QColor(present.red, present.green, present.blue), this);
        if (chosen.isValid())
            UserChanges(index, [&](CControl& control) {
                control.color = CRGBColor(static_cast<unsigned char>(chosen.red()), static_cast<unsigned char>(chosen.green()),
                                          static_cast<unsigned char>(chosen.blue()), control.color.alpha);
            });
    });
    return {button, nullptr, [button](const CControl& control) { button->setIcon(ColorIcon(control.color)); }};
}

CDialogPage::Field CDialogPage::MakeList(QWidget* parent, std::size_t index)
{
    auto* const list = new QListWidget(parent);
    list->setUniformItemSizes(true);
    SetLines(*list, m_table.controls[index]);
    QObject::connect(list, &QListWidget::currentRowChanged, this,
                     [this, index](int row) { UserChanges(index, [row](CControl& control) { control.selected = row; }); });
    return {list, nullptr, [list, shown = QStringList()](const CControl& control) mutable {
                if (QStringList texts = ItemTexts(control); texts != shown) {
                    list->clear();
                    list->addItems(texts);
                    shown = std::move(texts);
                }
                if (list->currentRow() != control.selected)
                    list->setCurrentRow(control.selected);
            }};
}

CDialogPage::Field CDialogPage::MakeCombo(QWidget* parent, std::size_t index)
{
    auto* const combo = new QComboBox(parent);
    QObject::connect(combo, &QComboBox::activated, this,
                     [this, index](int row) { UserChanges(index, [row](CControl& control) { control.selected = row; }); });
    return {combo, nullptr, [combo, shown = QStringList()](const CControl& control) mutable {
                if (QStringList texts = ItemTexts(control); texts != shown) {
                    combo->clear();
                    combo->addItems(texts);
                    shown = std::move(texts);
                }
                combo->setCurrentIndex(control.selected);
            }};
}

// A drag ends when the slider is let go of; keys and the wheel end at each step.
CDialogPage::Field CDialogPage::MakeSlider(QWidget* parent, std::size_t index)
{
    auto* const slider = new QSlider(Qt::Horizontal, parent);
    slider->setMinimumWidth(160);
    const auto end = [this, index] {
        const unsigned int id = m_table.controls[index].id;
        Tell([this, id] { m_table.OnSliderEnd(id); });
    };
    QObject::connect(slider, &QSlider::valueChanged, this, [this, slider, index, end](int value) {
        UserChanges(index, [value](CControl& control) { control.number = value; });
        if (!m_reading && !slider->isSliderDown())
            end();
    });
    QObject::connect(slider, &QSlider::sliderReleased, this, end);
    return {slider, nullptr, [slider](const CControl& control) {
                slider->setRange(control.minimum, control.maximum);
                slider->setPageStep(std::max((control.maximum - control.minimum) / 10, 1));
                slider->setValue(control.number);
            }};
}

CDialogPage::Field CDialogPage::MakeSpin(QWidget* parent, std::size_t index)
{
    auto* const spin = new QSpinBox(parent);
    spin->setAccelerated(true);
    QObject::connect(spin, &QSpinBox::valueChanged, this,
                     [this, index](int value) { UserChanges(index, [value](CControl& control) { control.number = value; }); });
    return {spin, nullptr, [spin](const CControl& control) {
                spin->setReadOnly(control.readOnly);
                spin->setRange(control.minimum, control.maximum);
                if (spin->value() != control.number)
                    spin->setValue(control.number);
            }};
}

CDialogPage::Field CDialogPage::MakeTable(QWidget* parent, std::size_t index)
{
    CCustomList* const table = m_table.controls[index].table;
    if (!table)
        return {new QWidget(parent), nullptr, {}};
    table->SetPeer(CreateListView(table, parent));
    QWidget* const widget = CPeer::Of(table) ? CPeer::Of(table)->GetWidget() : new QWidget(parent);
    SetLines(*widget, m_table.controls[index]);
    return {widget, nullptr, {}};
}

CDialogPage::Field CDialogPage::MakePicture(QWidget* parent, std::size_t)
{
    auto* const label = new QLabel(parent);
    label->setAlignment(Qt::AlignCenter);
    return {label, nullptr, [label](const CControl& control) {
                if (!control.picture) {
                    label->clear();
                    return;
                }
                const QPixmap pixels = QPixmap::fromImage(ToQt(*control.picture));
                label->setPixmap(control.height > 0 ? pixels.scaledToHeight(control.height, Qt::SmoothTransformation) : pixels);
            }};
}
