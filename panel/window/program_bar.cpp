#include "panel/window/program_bar.h"

#include "panel/look/tone_label.h"
#include "panel/window/started_program.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace tarnPanel {

namespace {

using State = StartedProgram::State;

} // namespace

ProgramBar::ProgramBar(StartedProgram &startedService, StartedProgram &startedPort, QWidget *parent)
    : QWidget(parent)
    , service(startedService)
    , serialPort(startedPort)
    , text(new ToneLabel(QStringLiteral("serviceText")))
    , button(new QPushButton)
{
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setFocusPolicy(Qt::StrongFocus);
    text->setAccessibleName(QStringLiteral("Programs of this window"));
    button->setObjectName(QStringLiteral("startService"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text, 1);
    layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, &ProgramBar::start);
    connect(&service, &StartedProgram::changed, this, &ProgramBar::refresh);
    connect(&serialPort, &StartedProgram::changed, this, &ProgramBar::refresh);
    refresh();
}

// Beside a service, whoever has started it.
bool ProgramBar::isPortMissing() const
{
    const bool hasService = service.isAlive() || service.state() == State::Foreign;
    return hasService && serialPort.state() == State::Ended;
}

void ProgramBar::start()
{
    if (isPortMissing())
        serialPort.start();
    else
        service.start();
}

void ProgramBar::refresh()
{
    QString whole = service.text();
    if (isPortMissing())
        whole += u' ' + serialPort.text() + QStringLiteral(" Updates of its MCU fail without it.");
    text->say(
        whole, service.state() == State::Ended || isPortMissing() ? std::optional(Tone::Bad) : std::nullopt);
    text->setAccessibleDescription(whole);
    button->setText(
        isPortMissing() ? QStringLiteral("&Start the serial port") : QStringLiteral("&Start the service"));
    button->setAccessibleDescription(QStringLiteral("Runs it until this window is closed"));
    button->setVisible(isPortMissing() || (service.mayBeStarted() && service.state() != State::Foreign));
    setVisible(!whole.isEmpty() || service.mayBeStarted());
}

} // namespace tarnPanel
