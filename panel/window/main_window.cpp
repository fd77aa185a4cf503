#include "panel/window/main_window.h"

#include "panel/client/client_side.h"
#include "panel/computer/computer_side.h"
#include "panel/look/theme.h"
#include "panel/session/session_bar.h"
#include "panel/window/closing_question.h"
#include "panel/window/program_bar.h"

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QMenuBar>
#include <QSettings>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace tarnPanel {

namespace {

constexpr QSize smallest(900, 600);
constexpr QSize first(1400, 900);
// Of a line of the text that stands in the place of a simulated computer.
constexpr int charactersOfTheReason = 32;

const QString title = QStringLiteral("Tarn Panel");
const QString titleBeforeClosing = QStringLiteral("Tarn Panel — closes after the update");

const QString geometryKey = QStringLiteral("window/geometry");
const QString halvesKey = QStringLiteral("window/halves");
const QString appearanceKey = QStringLiteral("window/appearance");

struct AppearanceRow
{
    Appearance appearance;
    const char *key; // in the settings
    const char *text;
};
constexpr AppearanceRow appearances[] = {
    {Appearance::AsSystem, "system", "As the &system"},
    {Appearance::Light, "light", "&Light"},
    {Appearance::Dark, "dark", "&Dark"},
};

} // namespace

MainWindow::MainWindow(const WindowOptions &options, QSettings &remembered, QWidget *parent)
    : QMainWindow(parent)
    , settings(remembered)
    , service(serviceProgram(), startFolder(options), stateFileOf(options))
    , serialPort(serialPortProgram(), startFolder(options), stateFileOf(options))
    , computerSide(new ComputerSide(stateFileOf(options), session, settings, nullptr, options.folder))
    , clientSide(new ClientSide(options.pipeName, session, settings))
    , sessionBar(new SessionBar(session, options.folder))
    , halves(new QSplitter)
{
    setWindowTitle(title);
    computerSide->setObjectName(QStringLiteral("computerSide"));
    sessionBar->setObjectName(QStringLiteral("sessionBar"));
    clientSide->setObjectName(QStringLiteral("clientSide"));
    halves->setChildrenCollapsible(false);
    halves->addWidget(computerSide);
    halves->addWidget(clientSide);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(halves, 1);
    layout->addWidget(sessionBar);
    layout->addWidget(new ProgramBar(service, serialPort));
    setCentralWidget(content);
    setMinimumSize(smallest);
    addMenus();
    restore();
    connect(computerSide, &ComputerSide::serviceSeen, clientSide, &ClientSide::connectByItself);
    connect(computerSide, &ComputerSide::hasComputerChanged, this, &MainWindow::showHalves);
    connect(computerSide, &ComputerSide::reasonChanged, this, &MainWindow::showHalves);
    connect(computerSide, &ComputerSide::hasComputerChanged, this, &MainWindow::startSerialPort);
    connect(clientSide, &ClientSide::updateEnded, this, &MainWindow::noteUpdateEnd);
    connect(&service, &StartedProgram::changed, this, &MainWindow::startSerialPort);
    connect(&service, &StartedProgram::changed, this, [this] {
        if (service.state() == StartedProgram::State::Running)
            clientSide->connectSoon();
    });
    connect(&service, &StartedProgram::changed, this, &MainWindow::noteProgram);
    connect(&serialPort, &StartedProgram::changed, this, &MainWindow::noteProgram);
    showHalves();
    service.start();
}

MainWindow::~MainWindow()
{
    // Their last words must not reach a window that is half gone.
    service.disconnect(this);
    serialPort.disconnect(this);
}

// What is remembered is what was seen last. The programs get the time that they need to end.
void MainWindow::closeEvent(QCloseEvent *event)
{
    if (asksBeforeClosing && clientSide->isUpdating()) {
        event->ignore();
        askBeforeClosing();
        return;
    }
    remember();
    isClosing = true;
    service.end();
    serialPort.end();
    event->accept();
    noteProgram();
}

void MainWindow::askBeforeClosing()
{
    if (auto *asked = findChild<ClosingQuestion *>()) {
        asked->activateWindow();
        return;
    }
    auto *question = new ClosingQuestion(this);
    connect(question, &ClosingQuestion::keepOpenChosen, this, [this] { closeAfterUpdate(false); });
    connect(question, &ClosingQuestion::closeAfterwardsChosen, this, [this] { closeAfterUpdate(true); });
    connect(question, &ClosingQuestion::closeNowChosen, this, &MainWindow::closeNow);
    question->open();
}

void MainWindow::closeAfterUpdate(bool closes)
{
    closesAfterUpdate = closes;
    setWindowTitle(closes ? titleBeforeClosing : title);
}

// A failure has to be read before the window closes.
void MainWindow::noteUpdateEnd(bool isDone)
{
    if (auto *asked = findChild<ClosingQuestion *>())
        asked->close();
    const bool closes = closesAfterUpdate && isDone;
    closeAfterUpdate(false);
    if (closes)
        closeNow();
}

void MainWindow::closeNow()
{
    asksBeforeClosing = false;
    close();
}

void MainWindow::noteProgram()
{
    if (isClosing && !service.isAlive() && !serialPort.isAlive())
        Q_EMIT ended();
}

// Only with the service and once there is a computer, because it makes none.
void MainWindow::startSerialPort()
{
    const bool runs = service.state() == StartedProgram::State::Running
        || service.state() == StartedProgram::State::Foreign;
    if (!isClosing && runs && computerSide->hasComputer() && !serialPort.isAlive())
        serialPort.start();
}

void MainWindow::addMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->addAction(QStringLiteral("&Save the session as a script…"), QKeySequence::Save, sessionBar,
        &SessionBar::saveAs);
    file->addAction(QStringLiteral("&Commands of this session…"), sessionBar, &SessionBar::showAll);
    file->addSeparator();
    file->addAction(QStringLiteral("&Quit"), QKeySequence::Quit, this, &MainWindow::close);
    addAppearances(menuBar()->addMenu(QStringLiteral("&View")));
}

void MainWindow::addAppearances(QMenu *menu)
{
    auto *group = new QActionGroup(this);
    const QString chosen = settings.value(appearanceKey, QStringLiteral("system")).toString();
    for (const AppearanceRow &row : appearances) {
        const QString key = QString::fromLatin1(row.key);
        QAction *action = menu->addAction(QString::fromLatin1(row.text));
        action->setObjectName(QStringLiteral("appearance_") + key);
        action->setCheckable(true);
        action->setActionGroup(group);
        connect(action, &QAction::triggered, this, [this, key, appearance = row.appearance] {
            settings.setValue(appearanceKey, key);
            setAppearance(appearance);
        });
        if (key == chosen) {
            action->setChecked(true);
            setAppearance(row.appearance);
        }
    }
}

void MainWindow::restore()
{
    resize(first);
    restoreGeometry(settings.value(geometryKey).toByteArray());
}

void MainWindow::remember()
{
    settings.setValue(geometryKey, saveGeometry());
    if (computerSide->hasComputer())
        settings.setValue(halvesKey, halves->saveState());
}

// Beside a real computer the client has the window, but for a few lines that say why.
void MainWindow::showHalves()
{
    const bool hasComputer = computerSide->hasComputer();
    const int textWidth = fontMetrics().averageCharWidth() * charactersOfTheReason;
    computerSide->setMaximumWidth(
        hasComputer ? QWIDGETSIZE_MAX : std::max(textWidth, computerSide->reasonWidth()));
    if (!hasComputer || halves->restoreState(settings.value(halvesKey).toByteArray()))
        return;
    halves->setSizes({width() / 2, width() / 2});
}

} // namespace tarnPanel
