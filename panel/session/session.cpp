#include "panel/session/session.h"

#include <algorithm>

namespace tarnPanel {

namespace {

constexpr qint64 longestPauseMs = 60000;
// The steps of one movement, which take no time in a script either.
constexpr qint64 shortestPauseMs = 100;

} // namespace

void Session::add(const Command &command, const QDateTime &now)
{
    if (entries.size() == capacity) {
        beginRemoveRows({}, 0, 0);
        entries.removeFirst();
        endRemoveRows();
        ++dropped;
    }
    const int row = static_cast<int>(entries.size());
    beginInsertRows({}, row, row);
    entries.append({now, command});
    endInsertRows();
}

QString Session::lastText() const
{
    return entries.isEmpty() ? QString() : shellText(entries.last().command);
}

QString Session::script(const QString &folder, const Shell &shell) const
{
    QString text = shell.start;
    const auto addLine = [&text, &shell](const QString &line) {
        text += line + shell.lineEnd;
    };
    addLine(shell.comment
        + QStringLiteral(
            "A session of tarnpanel. The service talks to one client at a time, so end the panel's "
            "connection first."));
    if (dropped > 0) {
        addLine(shell.comment
            + QStringLiteral("The first %1 commands are missing: the panel keeps %2.")
                  .arg(dropped)
                  .arg(capacity));
    }
    addLine(shell.changeFolder(folder));
    QDateTime before;
    for (const Entry &entry : entries) {
        const qint64 pauseMs = before.isValid() ? before.msecsTo(entry.time) : 0;
        if (pauseMs >= shortestPauseMs)
            addLine(shell.pause(std::min(pauseMs, longestPauseMs)));
        addLine(shell.line(shellText(entry.command, shell)));
        before = entry.time;
    }
    return text;
}

int Session::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries.size());
}

int Session::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant Session::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::DisplayRole)
        return {};
    const Entry &entry = entries.at(index.row());
    return index.column() == Time ? entry.time.toString(QStringLiteral("HH:mm:ss"))
                                  : shellText(entry.command);
}

QVariant Session::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Time ? QStringLiteral("Time") : QStringLiteral("Command");
}

} // namespace tarnPanel
