#include "panel/computer/fault_row.h"

#include "panel/computer/machine_operations.h"
#include "panel/computer/wheel_guard.h"
#include "panel/look/tone_label.h"
#include "simulator/tool/tool_text.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

constexpr int mostSkippedAccesses = 1000000;

QString numberHint(const FaultDescription &fault)
{
    QString hint =
        QStringLiteral("%1: %2 to %3").arg(toQString(fault.unit)).arg(fault.minimum).arg(fault.maximum);
    if (fault.kind == FaultValue::Number)
        hint += QStringLiteral("; empty: %1").arg(fault.onValue);
    return hint;
}

} // namespace

FaultRow::FaultRow(const FaultDescription &description, MachineOperations &machineOperations)
    : fault(description)
    , operations(machineOperations)
    , box(new QCheckBox(toQString(description.name)))
    , state(new ToneLabel(Tone::Bad))
    , complaint(new ToneLabel(Tone::Bad))
{
    const QString name = toQString(fault.name);
    box->setObjectName(QStringLiteral("fault-") + name);
    box->setAccessibleName(QStringLiteral("Fault %1").arg(name));
    box->setAccessibleDescription(toQString(fault.help));
    complaint->setObjectName(QStringLiteral("fault-complaint-") + name);
    complaint->hide();
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setVerticalSpacing(2);
    layout->addWidget(box, 0, 0);
    layout->addWidget(state, 0, 1);
    layout->setColumnStretch(1, 1);
    layout->addWidget(new ToneLabel(Tone::Quiet, toQString(fault.help)), 1, 0, 1, 2);
    addFields(layout);
    layout->addWidget(complaint, 3, 0, 1, 2);
    connect(box, &QCheckBox::clicked, this, &FaultRow::apply);
}

void FaultRow::look(const ComputerControl &computer)
{
    const QString text = faultStateText(computer, fault);
    box->setChecked(!text.isEmpty());
    if (state->text() != text)
        state->setText(text);
    if (target != nullptr && fault.kind == FaultValue::Device && !target->view()->isVisible())
        listDevices(computer);
}

bool FaultRow::isOn() const
{
    return box->isChecked();
}

bool FaultRow::matches(const QString &filter) const
{
    return toQString(fault.name).contains(filter, Qt::CaseInsensitive)
        || toQString(fault.help).contains(filter, Qt::CaseInsensitive);
}

void FaultRow::addFields(QGridLayout *layout)
{
    if (fault.kind == FaultValue::None)
        return;
    if (fault.kind == FaultValue::Register || fault.kind == FaultValue::Device) {
        addTargets(layout);
        return;
    }
    number = new QLineEdit;
    number->setObjectName(QStringLiteral("fault-number-") + toQString(fault.name));
    number->setPlaceholderText(numberHint(fault));
    number->setAccessibleName(QStringLiteral("%1 of %2").arg(toQString(fault.unit), toQString(fault.name)));
    number->setAccessibleDescription(numberHint(fault));
    layout->addWidget(number, 2, 0, 1, 2);
    connect(number, &QLineEdit::returnPressed, this, [this] { apply(true); });
}

void FaultRow::addTargets(QGridLayout *layout)
{
    const QString name = toQString(fault.name);
    const QString unit = toQString(fault.unit);
    target = new QComboBox;
    target->setObjectName(QStringLiteral("fault-target-") + name);
    target->setAccessibleName(QStringLiteral("%1 of %2").arg(unit, name));
    target->setAccessibleDescription(QStringLiteral("where the fault strikes"));
    // Long names of registers must not make the whole window wide.
    target->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    target->setMinimumContentsLength(12);
    if (fault.kind == FaultValue::Register) {
        target->addItems(allRegisterNames());
        target->setEditable(true);
        target->setInsertPolicy(QComboBox::NoInsert);
        // An address: activated() is sent for the names of the list only.
        connect(target->lineEdit(), &QLineEdit::returnPressed, this, [this] {
            if (target->findText(target->currentText()) < 0)
                applyAgain();
        });
    }
    skip = new QSpinBox;
    skip->setObjectName(QStringLiteral("fault-skip-") + name);
    skip->setRange(0, mostSkippedAccesses);
    skip->setPrefix(QStringLiteral("after "));
    skip->setAccessibleName(QStringLiteral("How many succeed before, of %1").arg(name));
    skip->setAccessibleDescription(QStringLiteral("so many accesses or calls still succeed"));
    skip->setKeyboardTracking(false);
    guardFromWheel(target);
    guardFromWheel(skip);
    connect(target, &QComboBox::activated, this, &FaultRow::applyAgain);
    connect(skip, &QSpinBox::valueChanged, this, &FaultRow::applyAgain);
    layout->addWidget(target, 2, 0);
    layout->addWidget(skip, 2, 1, Qt::AlignLeft);
}

// Another place or number takes effect at once while the fault is on.
void FaultRow::applyAgain()
{
    if (isOn())
        apply(true);
}

void FaultRow::apply(bool on)
{
    const QStringList switchedOff {QStringLiteral("fault"), toQString(fault.name), QStringLiteral("off")};
    const bool isDone = operations.carryOut(on ? words() : switchedOff);
    complaint->setText(isDone ? QString() : operations.complaint());
    complaint->setVisible(!isDone);
    if (!isDone)
        box->setChecked(!state->text().isEmpty());
}

QStringList FaultRow::words() const
{
    QStringList all {QStringLiteral("fault"), toQString(fault.name)};
    if (number != nullptr && !number->text().isEmpty())
        all << number->text().trimmed();
    if (target == nullptr)
        return all;
    const QVariant word = target->currentData();
    all << (target->isEditable() || !word.isValid() ? target->currentText().trimmed() : word.toString());
    if (skip->value() > 0)
        all << QString::number(skip->value());
    return all;
}

void FaultRow::listDevices(const ComputerControl &computer)
{
    const DeviceTree &tree = computer.devices();
    QStringList names {QStringLiteral("every device")};
    for (const std::int32_t slot : tree.allSlots())
        names << toQString(tree.device(slot).name);
    QStringList listed;
    for (int row = 0; row < target->count(); ++row)
        listed << target->itemText(row);
    if (listed == names)
        return;
    const QString chosen = target->currentText();
    target->clear();
    for (const QString &name : names)
        target->addItem(name, target->count() == 0 ? QStringLiteral("on") : name);
    target->setCurrentIndex(std::max(0, target->findText(chosen)));
}

} // namespace tarnPanel
