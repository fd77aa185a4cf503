#include "panel/session/session_bar.h"

#include "panel/session/session.h"
#include "panel/session/session_list.h"

#include <QClipboard>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QStandardPaths>

namespace tarnPanel {

namespace {

constexpr QFile::Permissions runnable = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner
    | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;

} // namespace

SessionBar::SessionBar(Session &shownSession, const QString &programFolder, QWidget *parent)
    : QWidget(parent)
    , session(shownSession)
    , folder(programFolder)
    , last(new QLineEdit)
    , copyButton(new QPushButton(QStringLiteral("Copy")))
    , allButton(new QPushButton)
{
    auto *label = new QLabel(QStringLiteral("T&he same as a command:"));
    label->setBuddy(last);
    last->setObjectName(QStringLiteral("lastCommand"));
    last->setReadOnly(true);
    last->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    last->setAccessibleName(QStringLiteral("The last action as a command"));
    last->setPlaceholderText(QStringLiteral("What you do here is shown as a command."));
    copyButton->setObjectName(QStringLiteral("copyCommand"));
    copyButton->setAccessibleDescription(QStringLiteral("Copies the command"));
    allButton->setObjectName(QStringLiteral("allCommands"));
    allButton->setAccessibleDescription(
        QStringLiteral("Lists all commands, to copy them or to save them as a script"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(last, 1);
    layout->addWidget(copyButton);
    layout->addWidget(allButton);
    connect(copyButton, &QPushButton::clicked, this, &SessionBar::copy);
    connect(allButton, &QPushButton::clicked, this, &SessionBar::showAll);
    connect(&session, &Session::rowsInserted, this, &SessionBar::refresh);
    refresh();
}

void SessionBar::refresh()
{
    const int count = session.rowCount();
    last->setText(session.lastText());
    last->setCursorPosition(0);
    copyButton->setEnabled(count > 0);
    allButton->setEnabled(count > 0);
    allButton->setText(QStringLiteral("&All %1…").arg(count));
}

void SessionBar::copy()
{
    QGuiApplication::clipboard()->setText(session.lastText());
}

void SessionBar::showAll()
{
    if (list.isNull()) {
        auto *dialog = new SessionList(session, window());
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(dialog, &SessionList::saveWanted, this, &SessionBar::saveAs);
        list = dialog;
    }
    list->show();
    list->raise();
    list->activateWindow();
}

void SessionBar::saveAs()
{
    if (session.rowCount() == 0) {
        tell(QStringLiteral("Nothing has been done in this window yet that a script could do again."));
        return;
    }
    auto *dialog = new QFileDialog(window(), QStringLiteral("Save the session as a script"));
    dialog->setObjectName(QStringLiteral("saveSession"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(systemShell().fileFilter);
    dialog->setDefaultSuffix(systemShell().suffix);
    dialog->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog->selectFile(QStringLiteral("session.") + systemShell().suffix);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &file) {
        const QString problem = save(session, folder, file);
        if (!problem.isEmpty())
            tell(problem);
    });
    dialog->open();
}

void SessionBar::tell(const QString &problem)
{
    auto *box = new QMessageBox(
        QMessageBox::Warning, QStringLiteral("Tarn Panel"), problem, QMessageBox::Ok, window());
    box->setObjectName(QStringLiteral("sessionProblem"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

QString SessionBar::save(const Session &session, const QString &folder, const QString &file)
{
    QSaveFile script(file);
    const bool isWritten = script.open(QIODevice::WriteOnly)
        && script.write(session.script(folder).toUtf8()) >= 0 && script.setPermissions(runnable)
        && script.commit();
    return isWritten
        ? QString()
        : QStringLiteral("The session cannot be saved in %1: %2.").arg(file, script.errorString());
}

} // namespace tarnPanel
