#include "panel/computer/accessory_row.h"

#include "panel/computer/accessory_button.h"
#include "panel/computer/machine_drawing.h"
#include "panel/computer/machine_operations.h"
#include "simulator/accessory_catalog.h"
#include "simulator/tool/tool_text.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace tarnPanel {

using tarnSimulator::toQString;

namespace {

constexpr int columns = 4;
constexpr std::uint8_t anyCode = 0;

QString unknownName()
{
    return toQString(tarnSimulator::unknownAccessory(anyCode).name);
}

struct KeyTexts
{
    QString beside; // one line
    QString whole;
};

KeyTexts keyTextsOf(const MachineFacts &facts)
{
    const QString noBox = QStringLiteral("Only a graphics box has the key.");
    if (!facts.hasGraphics())
        return {QStringLiteral("graphics box only"), noBox};
    const QString what = QStringLiteral("Asks to take the box off. ");
    if (facts.userWaits)
        return {QStringLiteral("asks the user, here"), what + QStringLiteral("The question comes up here.")};
    return {QStringLiteral("answered at once"),
        what
            + QStringLiteral(
                "The user answers at once; \"wait for me\" under Controls brings the question up here.")};
}

// Of what is plugged in now; empty: nothing.
QString attachedName(const MachineFacts &facts)
{
    if (!facts.isAttached)
        return {};
    const auto *known = tarnSimulator::findAccessory(facts.accessoryCode);
    return known == nullptr ? unknownName() : toQString(known->name);
}

} // namespace

AccessoryRow::AccessoryRow(MachineOperations &machineOperations, MachineDrawing *dropPlace, QWidget *parent)
    : QWidget(parent)
    , operations(machineOperations)
    , drawing(dropPlace)
    , key(new QPushButton(QStringLiteral("&GPU key")))
    , keyText(new QLabel)
{
    auto *layout = new QGridLayout(this);
    layout->setContentsMargins(4, 0, 4, 2);
    layout->setSpacing(4);
    int place = 0;
    addButton({}, QStringLiteral("Nothing"), QStringLiteral("unplugs what is plugged in"), place++);
    for (const auto &accessory : tarnSimulator::accessoryCatalog()) {
        const QString name = toQString(accessory.name);
        addButton(name, accessoryTitle(name), toQString(accessory.help), place++);
    }
    const auto unknown = tarnSimulator::unknownAccessory(anyCode);
    addButton(unknownName(), accessoryTitle(unknownName()), toQString(unknown.help), place++);

    key->setObjectName(QStringLiteral("gpuKey"));
    keyText->setObjectName(QStringLiteral("gpuKeyText"));
    keyText->setBuddy(key);
    layout->addWidget(key, place / columns, place % columns);
    layout->addWidget(keyText, place / columns, place % columns + 1, 1, columns - place % columns - 1);
    connect(
        key, &QPushButton::clicked, this, [this] { operations.carryOut({QStringLiteral("press-gpu-key")}); });
}

void AccessoryRow::show(const MachineFacts &facts)
{
    const QString attached = attachedName(facts);
    for (AccessoryButton *button : buttons)
        button->setChecked(button->accessoryName() == attached);
    key->setEnabled(facts.hasGraphics());
    const KeyTexts texts = keyTextsOf(facts);
    if (key->accessibleDescription() == texts.whole)
        return;
    keyText->setText(texts.beside);
    key->setToolTip(texts.whole);
    key->setAccessibleDescription(texts.whole);
}

void AccessoryRow::addButton(const QString &name, const QString &title, const QString &help, int place)
{
    auto *button = new AccessoryButton(name, title);
    button->setObjectName(QStringLiteral("accessory-") + (name.isEmpty() ? QStringLiteral("nothing") : name));
    button->setToolTip(help);
    button->setAccessibleDescription(help);
    buttons << button;
    static_cast<QGridLayout *>(layout())->addWidget(button, place / columns, place % columns);
    connect(button, &AccessoryButton::clicked, this, [this, name] { plug(name); });
    connect(
        button, &AccessoryButton::dragged, this, [this](QPoint position) { drawing->offerDrop(position); });
    connect(button, &AccessoryButton::dragCancelled, drawing, &MachineDrawing::endDrop);
    connect(button, &AccessoryButton::dropped, this, [this, name](QPoint position) {
        const bool isOver = drawing->offerDrop(position);
        drawing->endDrop();
        if (isOver)
            plug(name);
    });
}

void AccessoryRow::plug(const QString &name)
{
    operations.carryOut(name.isEmpty() ? QStringList {QStringLiteral("detach")}
                                       : QStringList {QStringLiteral("attach"), name});
}

} // namespace tarnPanel
