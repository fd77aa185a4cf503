#include "panel/client/message_log.h"

#include <algorithm>
#include <array>

namespace tarnPanel {

namespace {

// Long enough for a burst to come as one change of the table, short enough not to be seen.
constexpr std::chrono::milliseconds takingPause {30};
constexpr int mostArrived = MessageLog::removedAtOnce;

constexpr std::array<QLatin1StringView, messageKindCount> kindNames {{
    QLatin1StringView("Sent"),
    QLatin1StringView("Answer"),
    QLatin1StringView("Not answered"),
    QLatin1StringView("Notification"),
    QLatin1StringView("Other"),
    QLatin1StringView("Garbage"),
    QLatin1StringView("Connection"),
}};

constexpr std::array<QLatin1StringView, MessageLog::ColumnCount> columnNames {
    {QLatin1StringView("Time"), QLatin1StringView("Kind"), QLatin1StringView("Text")}};

QString shortened(const QString &text)
{
    if (text.size() <= MessageLog::longestText)
        return text;
    return text.left(MessageLog::longestText)
        + QStringLiteral(" … (%1 of %2 characters kept)").arg(MessageLog::longestText).arg(text.size());
}

} // namespace

QString nameOf(MessageKind kind)
{
    return kindNames[static_cast<std::size_t>(kind)].toString();
}

MessageLog::MessageLog(QObject *parent)
    : QAbstractTableModel(parent)
{
    taking.setSingleShot(true);
    taking.setInterval(takingPause);
    connect(&taking, &QTimer::timeout, this, &MessageLog::takeArrived);
}

void MessageLog::add(MessageKind kind, const QString &text)
{
    arrived.append({QDateTime::currentDateTime(), kind, shortened(text)});
    if (arrived.size() >= mostArrived)
        takeArrived();
    else if (!taking.isActive())
        taking.start();
}

void MessageLog::clear()
{
    beginResetModel();
    messages.clear();
    arrived.clear();
    characters = 0;
    endResetModel();
}

void MessageLog::takeArrived()
{
    taking.stop();
    if (arrived.isEmpty())
        return;
    for (const Message &message : std::as_const(arrived))
        characters += message.text.size();
    while (!messages.empty() && (rowCount() + arrived.size() > capacity || characters > mostCharacters))
        removeOldest();
    const int first = static_cast<int>(messages.size());
    beginInsertRows({}, first, first + static_cast<int>(arrived.size()) - 1);
    messages.insert(messages.end(), arrived.cbegin(), arrived.cend());
    arrived.clear();
    endInsertRows();
}

void MessageLog::removeOldest()
{
    const int count = std::min(removedAtOnce, rowCount());
    for (int row = 0; row < count; ++row)
        characters -= at(row).text.size();
    beginRemoveRows({}, 0, count - 1);
    messages.erase(messages.begin(), messages.begin() + count);
    endRemoveRows();
}

int MessageLog::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(messages.size());
}

int MessageLog::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MessageLog::cellText(const Message &message, int column) const
{
    if (column == Time)
        return message.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    return column == Kind ? nameOf(message.kind) : message.text;
}

QVariant MessageLog::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Message &message = at(index.row());
    if (role == Qt::ToolTipRole)
        return message.text;
    if (role != Qt::DisplayRole)
        return {};
    return cellText(message, index.column()).replace(u'\n', u' ');
}

QVariant MessageLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section >= ColumnCount)
        return {};
    return columnNames[static_cast<std::size_t>(section)].toString();
}

} // namespace tarnPanel
