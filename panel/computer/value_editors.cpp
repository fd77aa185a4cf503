#include "panel/computer/value_editor.h"
#include "panel/computer/value_names.h"
#include "panel/look/theme.h"
#include "simulator/tool/tool_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>

namespace tarnPanel {

using tarnSimulator::MachineValue;
using tarnSimulator::toQString;

namespace {

constexpr int greatestByte = 255;

QHBoxLayout *rowLayout(QWidget *of)
{
    auto *layout = new QHBoxLayout(of);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    return layout;
}

class ReadOnlyEditor : public ValueEditor
{
public:
    ReadOnlyEditor(const MachineValue &edited, MachineOperations &tool)
        : ValueEditor(edited, tool)
        , label(new QLabel)
    {
        describe(label);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        rowLayout(this)->addWidget(label);
    }

protected:
    void display(const QString &text) override
    {
        label->setText(text);
        label->setAccessibleName(titleOf(machineValue()) + QStringLiteral(": ") + text);
    }

private:
    QLabel *label;
};

class LevelEditor : public ValueEditor
{
public:
    LevelEditor(const MachineValue &edited, MachineOperations &tool)
        : ValueEditor(edited, tool)
        , slider(new QSlider(Qt::Horizontal))
        , box(new QSpinBox)
    {
        slider->setRange(0, usualMaximum(edited));
        slider->setPageStep(usualMaximum(edited) / 10);
        slider->setMinimumWidth(slider->fontMetrics().averageCharWidth() * 6);
        box->setRange(0, greatestByte);
        box->setKeyboardTracking(false);
        describe(slider);
        describe(box, QStringLiteral("-number"));
        QHBoxLayout *layout = rowLayout(this);
        layout->addWidget(slider, 1);
        layout->addWidget(box);
        connect(slider, &QSlider::valueChanged, this, &LevelEditor::follow);
        connect(slider, &QSlider::sliderReleased, this, &LevelEditor::endMovement);
        connect(box, &QSpinBox::valueChanged, this, [this](int level) { set(QString::number(level)); });
        typed = box->findChild<QLineEdit *>();
        connect(box, &QSpinBox::editingFinished, this, [this] { typed->setModified(false); });
    }

protected:
    void display(const QString &text) override
    {
        const QSignalBlocker quietSlider(slider);
        const QSignalBlocker quietBox(box);
        slider->setValue(text.toInt());
        box->setValue(text.toInt());
    }

    [[nodiscard]] bool isBusy() const override
    {
        return slider->isSliderDown() || (box->hasFocus() && typed->isModified());
    }

private:
    // A click beside the handle and the keyboard are whole changes; a drag is one when it ends.
    void follow(int level)
    {
        const bool isStep = slider->isSliderDown();
        if (isStep) {
            const QSignalBlocker quiet(box);
            box->setValue(level);
        }
        const bool isDone = set(QString::number(level), isStep);
        hasMoved = isDone && isStep;
    }

    void endMovement()
    {
        if (hasMoved)
            noteSet(QString::number(slider->value()));
        hasMoved = false;
        forgetShown();
    }

    QSlider *slider;
    QSpinBox *box;
    QLineEdit *typed = nullptr;
    bool hasMoved = false;
};

class SwitchEditor : public ValueEditor
{
public:
    SwitchEditor(const MachineValue &edited, MachineOperations &tool)
        : ValueEditor(edited, tool)
        , box(new QCheckBox)
    {
        describe(box);
        rowLayout(this)->addWidget(box);
        connect(box, &QCheckBox::clicked, this, [this](bool isOn) {
            set(isOn ? QStringLiteral("on") : QStringLiteral("off"));
            forgetShown();
        });
    }

protected:
    void display(const QString &text) override
    {
        const auto state = isOn(machineValue(), text);
        box->setCheckState(!state ? Qt::PartiallyChecked : *state ? Qt::Checked : Qt::Unchecked);
        const QString word = !state ? QStringLiteral("neither on nor off")
            : *state                ? QStringLiteral("on")
                                    : QStringLiteral("off");
        box->setText(word == text ? word : QStringLiteral("%1 (%2)").arg(word, text));
    }

private:
    QCheckBox *box;
};

class ChoiceEditor : public ValueEditor
{
public:
    ChoiceEditor(const MachineValue &edited, MachineOperations &tool)
        : ValueEditor(edited, tool)
        , box(new QComboBox)
    {
        for (const QString &choice : choicesOf(edited))
            box->addItem(choiceTitle(choice), choice);
        box->setFocusPolicy(Qt::StrongFocus);
        describe(box);
        rowLayout(this)->addWidget(box);
        connect(box, &QComboBox::activated, this, [this](int index) {
            set(box->itemData(index).toString());
            forgetShown();
        });
    }

protected:
    // One that the list does not have, such as an exit code, is shown all the same.
    void display(const QString &text) override
    {
        box->setPlaceholderText(text);
        box->setCurrentIndex(box->findData(text));
    }

private:
    QComboBox *box;
};

class TextEditor : public ValueEditor
{
public:
    TextEditor(const MachineValue &edited, MachineOperations &tool)
        : ValueEditor(edited, tool)
        , line(new QLineEdit)
    {
        line->setPlaceholderText(toQString(edited.allowed));
        describe(line);
        rowLayout(this)->addWidget(line);
        connect(line, &QLineEdit::editingFinished, this, &TextEditor::finish);
    }

protected:
    void display(const QString &text) override
    {
        line->setText(text);
        line->setModified(false);
    }

    [[nodiscard]] bool isBusy() const override { return line->isModified(); }

private:
    // A refused text stays, so that it can be mended; the next empty or allowed one ends it.
    void finish()
    {
        if (!line->isModified())
            return;
        const bool givesUp = line->text().isEmpty();
        if (!givesUp && !set(line->text())) {
            mark(true);
            return;
        }
        if (givesUp)
            Q_EMIT complained({});
        mark(false);
        line->setModified(false);
        forgetShown();
    }

    void mark(bool isRefused)
    {
        QPalette colours;
        if (isRefused)
            colours.setColor(QPalette::Text, toneColour(Tone::Bad, colours));
        line->setPalette(isRefused ? colours : QPalette());
    }

    QLineEdit *line;
};

template <typename Editor>
std::unique_ptr<ValueEditor> make(const MachineValue &value, MachineOperations &operations)
{
    return std::make_unique<Editor>(value, operations);
}

} // namespace

std::unique_ptr<ValueEditor> editorOf(const MachineValue &value, MachineOperations &operations)
{
    switch (kindOf(value)) {
    case ValueKind::Level:
        return make<LevelEditor>(value, operations);
    case ValueKind::Switch:
        return make<SwitchEditor>(value, operations);
    case ValueKind::Choice:
        return make<ChoiceEditor>(value, operations);
    case ValueKind::Text:
        return make<TextEditor>(value, operations);
    case ValueKind::ReadOnly:
        break;
    }
    return make<ReadOnlyEditor>(value, operations);
}

} // namespace tarnPanel
