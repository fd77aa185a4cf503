#include "panel/client/update_page.h"

#include "panel/client/careful_button.h"
#include "panel/client/needs.h"
#include "panel/client/reachable_label.h"
#include "panel/client/service_link.h"
#include "panel/client/update_result.h"

#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>

namespace tarnPanel {

namespace {

using tarn::FirmwareKind;

// The file is looked at when the typing pauses.
constexpr std::chrono::milliseconds typingPause {300};

const QString abandonHint = QStringLiteral(
    "Stops waiting and sends nothing more. What has been sent already, the service carries out "
    "all the same.");

// As the MCU tells it.
const QRegularExpression versionForm(QStringLiteral("\\A[0-9]+\\.[0-9]+\\z"));

// "0:07".
QString clockText(std::chrono::milliseconds time)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void addNamed(QGridLayout &grid, int line, const QString &label, QWidget *widget, const QString &name)
{
    auto *text = new QLabel(label);
    text->setBuddy(widget);
    widget->setObjectName(name);
    widget->setAccessibleName(label);
    grid.addWidget(text, line, 0);
    grid.addWidget(widget, line, 1);
}

// The first of what is dragged; empty: no file of this computer.
QString draggedFile(const QMimeData &data)
{
    return data.urls().value(0).toLocalFile();
}

} // namespace

UpdatePage::UpdatePage(ServiceLink &serviceLink, UpdateRun &updateRun, QWidget *parent)
    : QWidget(parent)
    , link(serviceLink)
    , run(updateRun)
    , kind(new QComboBox)
    , file(new QLineEdit)
    , version(new QLineEdit)
    , browsing(new QPushButton(QStringLiteral("Browse…")))
    , notice(new ToneLabel(QStringLiteral("updateNotice")))
    , objection(new ReachableLabel(
          QStringLiteral("updateObjection"), QStringLiteral("Why no update can be started")))
    , starting(new CarefulButton(QStringLiteral("Start update"),
          QStringLiteral("Flashes the file into the device. It cannot be taken back.")))
    , abandoning(new QPushButton(QStringLiteral("Abandon")))
    , progress(new QProgressBar)
    , phase(new ReachableLabel(QStringLiteral("updatePhase"), QStringLiteral("State of the update")))
    , result(new ReachableLabel(QStringLiteral("updateResult"), QStringLiteral("Result of the update")))
    , copying(new QPushButton(QStringLiteral("Copy result")))
{
    setAcceptDrops(true);
    auto *grid = new QGridLayout(this);
    grid->setColumnStretch(1, 1);
    addForm(*grid);
    addRun(*grid);
    looking.setSingleShot(true);
    looking.setInterval(typingPause);
    connect(&looking, &QTimer::timeout, this, &UpdatePage::lookAtFile);
    connect(&link, &ServiceLink::changed, this, &UpdatePage::refresh);
    connect(&run, &UpdateRun::changed, this, &UpdatePage::refresh);
    connect(&run, &UpdateRun::remarked, this, [this](const QString &text) { result->say(text); });
    connect(&run, &UpdateRun::finished, this,
        [this](FirmwareKind ended, const tarn::FirmwareResult &end) { showEnd(ended, end); });
    refresh();
}

void UpdatePage::addForm(QGridLayout &grid)
{
    kind->addItem(QStringLiteral("the KVane's MCU"), static_cast<int>(FirmwareKind::Mcu));
    kind->addItem(QStringLiteral("the computer's EC"), static_cast<int>(FirmwareKind::Ec));
    addNamed(grid, 0, QStringLiteral("Update of"), kind, QStringLiteral("updateKind"));
    addNamed(grid, 1, QStringLiteral("File"), file, QStringLiteral("updateFile"));
    // It would insert the text of the address; the page takes the file.
    file->setAcceptDrops(false);
    file->setPlaceholderText(QStringLiteral("choose, type or drop a firmware file"));
    browsing->setObjectName(QStringLiteral("browse"));
    browsing->setAccessibleDescription(QStringLiteral("Chooses the firmware file"));
    grid.addWidget(browsing, 1, 2);
    addNamed(grid, 2, QStringLiteral("Expected version"), version, QStringLiteral("updateVersion"));
    version->setPlaceholderText(QStringLiteral("not checked; such as 1.24"));
    version->setToolTip(QStringLiteral("The update has failed unless the MCU runs this version afterwards"));
    version->setAccessibleDescription(version->toolTip());
    connect(kind, &QComboBox::currentIndexChanged, this, [this] {
        fileObjection.clear();
        starting->forget();
        lookAtFile();
    });
    connect(file, &QLineEdit::textChanged, this, [this] {
        fileObjection.clear();
        starting->forget();
        looking.start();
        refresh();
    });
    connect(version, &QLineEdit::textChanged, this, [this] {
        starting->forget();
        refresh();
    });
    connect(browsing, &QPushButton::clicked, this, &UpdatePage::browse);
}

void UpdatePage::addRun(QGridLayout &grid)
{
    grid.addWidget(notice, 3, 0, 1, 3);
    grid.addWidget(objection, 4, 0, 1, 3);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(starting);
    buttons->addWidget(abandoning);
    buttons->addStretch();
    grid.addLayout(buttons, 5, 0, 1, 3);
    starting->setObjectName(QStringLiteral("startUpdate"));
    abandoning->setObjectName(QStringLiteral("abandonUpdate"));
    abandoning->setToolTip(abandonHint);
    abandoning->setAccessibleDescription(abandonHint);
    // How long it takes is not known.
    progress->setRange(0, 0);
    progress->setTextVisible(false);
    progress->setObjectName(QStringLiteral("updateProgress"));
    progress->setAccessibleName(QStringLiteral("Progress of the update"));
    grid.addWidget(progress, 6, 0, 1, 3);
    grid.addWidget(phase, 7, 0, 1, 3);
    grid.addWidget(result, 8, 0, 1, 3);
    copying->setObjectName(QStringLiteral("copyResult"));
    copying->setAccessibleDescription(QStringLiteral("Copies the result of the update"));
    copying->hide();
    grid.addWidget(copying, 9, 0, 1, 3, Qt::AlignLeft);
    grid.setRowStretch(10, 1);
    connect(starting, &CarefulButton::confirmed, this, [this] {
        result->say({});
        copying->hide();
        run.start(wish());
    });
    connect(abandoning, &QPushButton::clicked, &run, &UpdateRun::abandon);
    connect(copying, &QPushButton::clicked, this, &UpdatePage::copyResult);
}

UpdateRun::Wish UpdatePage::wish() const
{
    return {static_cast<FirmwareKind>(kind->currentData().toInt()), file->text().trimmed(),
        version->text().trimmed()};
}

void UpdatePage::browse()
{
    auto *dialog = new QFileDialog(this, QStringLiteral("Firmware file"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &chosen) {
        file->setText(chosen);
        lookAtFile(); // also when it is the one from before
    });
    dialog->open();
}

void UpdatePage::lookAtFile()
{
    refresh();
    const int number = ++lookNumber;
    isLooking = !wish().file.isEmpty();
    if (!isLooking)
        return;
    run.look(wish(), this, [this, number](const QString &text) {
        if (number != lookNumber)
            return;
        isLooking = false;
        fileObjection = text;
        refresh();
    });
}

QString UpdatePage::hindrance() const
{
    const Needs needs = wish().kind == FirmwareKind::Mcu ? Needs::KVane : Needs::Connection;
    QString reason = objectionTo(needs, link);
    if (!reason.isEmpty())
        return reason;
    if (wish().file.isEmpty())
        return QStringLiteral("No file is chosen.");
    const bool isVersion =
        wish().expectedVersion.isEmpty() || versionForm.match(wish().expectedVersion).hasMatch();
    if (wish().kind == FirmwareKind::Mcu && !isVersion)
        return QStringLiteral("The expected version is not two numbers, such as 1.24.");
    return fileObjection;
}

void UpdatePage::refresh()
{
    const bool isRunning = run.isRunning();
    const QString reason = isRunning ? QString() : hindrance();
    notice->say(run.notice(wish().kind));
    objection->say(reason, fileObjection.isEmpty() ? Tone::Quiet : Tone::Bad);
    objection->setVisible(!reason.isEmpty());
    starting->setEnabled(!isRunning && reason.isEmpty());
    starting->setAccessibleDescription(
        (reason + QStringLiteral(" Flashes the file; it cannot be taken back.")).trimmed());
    starting->setToolTip(starting->accessibleDescription());
    for (QWidget *widget : std::initializer_list<QWidget *> {kind, file, browsing})
        widget->setEnabled(!isRunning);
    version->setEnabled(!isRunning && wish().kind == FirmwareKind::Mcu);
    abandoning->setEnabled(isRunning);
    progress->setVisible(isRunning);
    phase->setVisible(isRunning);
    refreshPhase();
}

void UpdatePage::refreshAges()
{
    // The file may have been made or mended meanwhile.
    if (!run.isRunning() && !fileObjection.isEmpty() && !isLooking)
        lookAtFile();
    refreshPhase();
}

void UpdatePage::refreshPhase()
{
    if (!run.isRunning())
        return;
    const QString away = link.isConnected() ? QString() : QStringLiteral(" — the connection is lost");
    const QString lasting = run.phase() + away;
    phase->say(clockText(run.elapsed()) + QStringLiteral("  ") + lasting, {}, lasting);
    progress->setAccessibleDescription(lasting);
}

// It stays when something else is attached, so it says when that was, and of what.
void UpdatePage::showEnd(FirmwareKind ended, const tarn::FirmwareResult &end)
{
    const QString what = kind->itemText(kind->findData(static_cast<int>(ended)));
    const QString when = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    result->say(QStringLiteral("Update of %1, ended at %2:\n").arg(what, when) + resultText(end),
        toneOf(end.outcome));
    copying->show();
    lookAtFile();
}

void UpdatePage::copyResult()
{
    QGuiApplication::clipboard()->setText(result->text());
}

void UpdatePage::dragEnterEvent(QDragEnterEvent *event)
{
    if (!run.isRunning() && !draggedFile(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void UpdatePage::dropEvent(QDropEvent *event)
{
    const QString dropped = draggedFile(*event->mimeData());
    if (dropped.isEmpty())
        return;
    file->setText(dropped);
    event->acceptProposedAction();
}

} // namespace tarnPanel
