#pragma once

#include "panel/session/command.h"

namespace tarnPanel {

// How commands are written for the command line of a system.
struct Shell
{
    QString programPrefix; // of a program in the current folder
    QString (*word)(const QString &); // quoted where it would be read otherwise
    // Of a script.
    QString start;
    QString comment; // before a sentence
    QString (*line)(const QString &); // a command as a line
    QString (*changeFolder)(const QString &folder);
    QString (*pause)(qint64 ms);
    QString lineEnd;
    QString suffix; // of its file
    QString fileFilter;
};

[[nodiscard]] const Shell &posixShell();
// cmd.exe; what is copied can be pasted into PowerShell as well.
[[nodiscard]] const Shell &windowsShell();
// Of the system that this program was built for.
[[nodiscard]] const Shell &systemShell();

// To be typed in the folder of the programs.
[[nodiscard]] QString shellText(const Command &command, const Shell &shell = systemShell());

} // namespace tarnPanel
