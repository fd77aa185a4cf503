#include "panel/session/shell.h"

#include <QDir>
#include <QRegularExpression>

namespace tarnPanel {

namespace {

QString unchanged(const QString &text)
{
    return text;
}

QString posixWord(const QString &word)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(word).hasMatch())
        return word;
    QString inside = word;
    return u'\'' + inside.replace(u'\'', QStringLiteral("'\\''")) + u'\'';
}

QString windowsWord(const QString &word)
{
    static const QRegularExpression plain(QStringLiteral(R"(^[A-Za-z0-9_@+:./\\-]+$)"));
    if (plain.match(word).hasMatch())
        return word;
    // As the programs' runtime reads it: a backslash means something only before a quotation mark.
    static const QRegularExpression beforeMark(QStringLiteral(R"((\\*)("|$))"));
    QString inside = word;
    inside.replace(beforeMark, QStringLiteral("\\1\\1\\2"));
    return u'"' + inside.replace(u'"', QStringLiteral("\\\"")) + u'"';
}

// In a script a percent sign begins a variable, also between quotation marks.
QString windowsLine(const QString &command)
{
    QString line = command;
    return line.replace(u'%', QStringLiteral("%%"));
}

} // namespace

const Shell &posixShell()
{
    static const Shell shell {
        QStringLiteral("./"),
        posixWord,
        QStringLiteral("#!/bin/sh\n"),
        QStringLiteral("# "),
        unchanged,
        [](const QString &folder) { return QStringLiteral("cd %1 || exit 1").arg(posixWord(folder)); },
        [](qint64 ms) { return QStringLiteral("sleep %1").arg(static_cast<double>(ms) / 1000, 0, 'f', 1); },
        QStringLiteral("\n"),
        QStringLiteral("sh"),
        QStringLiteral("Shell scripts (*.sh)"),
    };
    return shell;
}

const Shell &windowsShell()
{
    static const Shell shell {
        QStringLiteral(".\\"),
        windowsWord,
        QStringLiteral("@echo off\r\n"),
        QStringLiteral("rem "),
        windowsLine,
        [](const QString &folder) {
            return QStringLiteral("cd /d \"%1\" || exit /b 1").arg(QDir::toNativeSeparators(folder));
        },
        // It counts whole seconds only.
        [](qint64 ms) { return QStringLiteral("timeout /t %1 /nobreak >nul").arg((ms + 999) / 1000); },
        QStringLiteral("\r\n"),
        QStringLiteral("cmd"),
        QStringLiteral("Command scripts (*.cmd)"),
    };
    return shell;
}

QString shellText(const Command &command, const Shell &shell)
{
    QStringList words {shell.programPrefix + shell.word(command.program)};
    for (const QString &word : command.words)
        words << shell.word(word);
    return words.join(u' ');
}

} // namespace tarnPanel
