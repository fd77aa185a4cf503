#include "panel/computer/asked_window.h"

#include "gui/popup_table.h"
#include "panel/computer/machine_operations.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

// The program looks for an answer every 50 ms. Somebody who repeats the session has to leave it as much time
// as the session's shortest pause.
constexpr int answerIsReadAfterMs = 1000;

QString fromWide(std::wstring_view text)
{
    return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}

QStringList setAnswer(const QString &answer)
{
    return {QStringLiteral("set"), QStringLiteral("gui-answer"), answer};
}

const tarnGui::Popup *popupOf(const std::string &programSwitch)
{
    return tarnGui::findPopup(std::wstring(programSwitch.begin(), programSwitch.end()));
}

} // namespace

AskedWindow::AskedWindow(MachineOperations &machineOperations, QWidget *parent)
    : QFrame(parent)
    , operations(machineOperations)
    , title(new QLabel)
    , text(new QLabel)
    , others(new QLabel)
    , buttons(new QHBoxLayout)
{
    setObjectName(QStringLiteral("askedWindow"));
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    title->setWordWrap(true);
    text->setWordWrap(true);
    // Reached by Tab, so that a screen reader can read all of it.
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setFocusPolicy(Qt::StrongFocus);
    text->setAccessibleName(QStringLiteral("Window of the service"));
    others->setWordWrap(true);
    others->setObjectName(QStringLiteral("askedOthers"));
    title->setObjectName(QStringLiteral("askedTitle"));
    text->setObjectName(QStringLiteral("askedText"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(4);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(others);
    layout->addLayout(buttons);
    hide();
}

void AskedWindow::show(const ComputerControl &computer)
{
    const Desktop &desktop = computer.desktop();
    const bool isOpen = desktop.windowsOpen() > 0;
    if (!isOpen) {
        hide();
        waitAgain(computer);
        return;
    }
    const std::string now = desktop.lastSwitch();
    const bool isAnother = desktop.windowsShown() != shownBefore;
    // The answer was for the one before.
    if (isAnother && hasAnswered)
        waitAgain(computer);
    shownBefore = desktop.windowsShown();
    if (isAnother || now != shownSwitch)
        build(now);
    showCount(desktop.windowsOpen());
    wasWaiting = wasWaiting || desktop.answer() == Desktop::waits;
    enableButtons();
    if (isVisible())
        return;
    setVisible(true);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void AskedWindow::startAnew()
{
    hide();
    shownSwitch.clear();
    hasAnswered = false;
    wasWaiting = false;
}

void AskedWindow::placeIn(const QRect &part)
{
    const int height = std::max(layout()->totalHeightForWidth(part.width()), minimumSizeHint().height());
    setGeometry(part.left(), part.top(), part.width(), height);
    raise();
}

void AskedWindow::build(const std::string &programSwitch)
{
    shownSwitch = programSwitch;
    // One of them may be the one that is just being clicked.
    for (QPushButton *old : std::exchange(answers, {})) {
        old->setObjectName({});
        old->hide();
        old->deleteLater();
    }
    while (QLayoutItem *item = buttons->takeAt(0))
        delete item;

    const tarnGui::Popup *popup = popupOf(programSwitch);
    title->setText(popup == nullptr
            ? QStringLiteral("The service shows a window")
            : QStringLiteral("The service asks the user: %1").arg(fromWide(popup->title)));
    text->setText(
        popup == nullptr ? QString::fromStdString(programSwitch) : fromWide(tarnGui::contentOf(*popup)));
    const bool isQuestion = popup != nullptr && popup->kind == tarnGui::PopupKind::Question;
    if (popup != nullptr && !isQuestion)
        title->setText(QStringLiteral("The service tells the user: %1").arg(fromWide(popup->title)));
    setAccessibleName(title->text());
    setAccessibleDescription(text->text());
    text->setAccessibleName(title->text());
    buttons->addStretch();
    if (popup == nullptr)
        addButton(QStringLiteral("OK"), false);
    else
        for (const tarnGui::PopupButton &button : popup->buttons)
            addButton(fromWide(button.label), button.answer == tarnGui::ExitCode::Yes);
    if (before == nullptr)
        return;
    setTabOrder(before, text);
    QWidget *last = text;
    for (QPushButton *button : std::as_const(answers)) {
        setTabOrder(last, button);
        last = button;
    }
}

// The user of the machine has one answer for all of them.
void AskedWindow::showCount(std::uint32_t windowsOpen)
{
    others->setVisible(windowsOpen > 1);
    others->setText(
        QStringLiteral("%1 windows are open, this is the last one. The answer goes to all of them.")
            .arg(windowsOpen));
}

void AskedWindow::addButton(const QString &label, bool isYes)
{
    auto *button = new QPushButton(label);
    button->setObjectName(isYes ? QStringLiteral("askedYes") : QStringLiteral("askedNo"));
    button->setAccessibleDescription(QStringLiteral("answers the window of the service"));
    buttons->addWidget(button);
    answers << button;
    connect(button, &QPushButton::clicked, this, [this, isYes] { answer(isYes); });
}

// There is one answer only.
void AskedWindow::enableButtons()
{
    for (QPushButton *button : std::as_const(answers))
        button->setEnabled(!hasAnswered);
}

void AskedWindow::answer(bool isYes)
{
    // Before, because the window may be closed as soon as the answer is there.
    hasAnswered = true;
    enableButtons();
    if (operations.carryOut(setAnswer(isYes ? QStringLiteral("yes") : QStringLiteral("no"))))
        return;
    hasAnswered = false;
    enableButtons();
}

void AskedWindow::waitAgain(const ComputerControl &computer)
{
    shownSwitch.clear();
    const bool isOurs = hasAnswered && wasWaiting && computer.desktop().answer() != Desktop::waits;
    hasAnswered = false;
    wasWaiting = false;
    const QStringList words = setAnswer(QStringLiteral("wait"));
    if (isOurs && operations.carryOut(words, MachineOperations::Noted::Later))
        operations.note(words, answerIsReadAfterMs);
}

} // namespace tarnPanel
