#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QWidget>

#include <windows/Dialog.h>

class QGridLayout;
class QHBoxLayout;

/// The widgets of one page, laid out by rows. What the user does goes into the page's controls; its handlers run, and `changed` afterwards.
class CDialogPage : public QWidget {
public:
    CDialogPage(CDialogTable& table, std::function<void()> changed);
    ~CDialogPage() override;

    CDialogTable& GetTable() { return m_table; }
    /// Shows the controls as they are now; makes the widgets anew when there are other controls.
    void Read();
    /// Number of the control that has the focus; 0 for none.
    unsigned int GetFocusedControl() const;
    /// In a user's place: a text, a number, 0 or 1 of a box, the number or text of an entry, "R G B"; anything presses a button. False when there is
    /// no such control, or it can't be used.
    bool SetValue(unsigned int id, const QString& value);

private:
    struct Field {
        QWidget* widget = nullptr;
        QWidget* label = nullptr;    ///< what stands in front
        std::function<void(const CControl&)> show;
    };
    struct Shape {
        ControlKind kind;
        unsigned int id, group;
        int row;
        friend bool operator==(const Shape&, const Shape&) = default;
    };

    std::vector<Shape> GetShape() const;
    void Build();
    QGridLayout* AddGroup(QWidget* parent, std::size_t index);
    void AddRow(QWidget* parent, QGridLayout& grid, std::size_t first, std::size_t last);
    Field MakeField(QWidget* parent, std::size_t index);
    Field MakeCheck(QWidget* parent, std::size_t index);
    Field MakeRadio(QWidget* parent, std::size_t index);
    Field MakeEdit(QWidget* parent, std::size_t index);
    Field MakeMemo(QWidget* parent, std::size_t index);
    Field MakeButton(QWidget* parent, std::size_t index);
    Field MakeColor(QWidget* parent, std::size_t index);
    Field MakeList(QWidget* parent, std::size_t index);
    Field MakeCombo(QWidget* parent, std::size_t index);
    Field MakeSlider(QWidget* parent, std::size_t index);
    Field MakeSpin(QWidget* parent, std::size_t index);
    Field MakeTable(QWidget* parent, std::size_t index);
    Field MakePicture(QWidget* parent, std::size_t index);
    /// The user has changed a control: `write` puts it there, the handler runs.
    void UserChanges(std::size_t index, const std::function<void(CControl&)>& write);
    void PressRadio(std::size_t index);
    void Tell(const std::function<void()>& handler);

    CDialogTable& m_table;
    std::function<void()> m_changed;
    std::vector<Field> m_fields;    ///< one a control
    std::vector<Shape> m_shape;
    QWidget* m_content = nullptr;
    bool m_reading = false;
};
