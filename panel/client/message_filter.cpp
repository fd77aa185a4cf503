#include "panel/client/message_filter.h"

#include "panel/client/message_log.h"

namespace tarnPanel {

MessageFilter::MessageFilter(MessageLog &messageLog, QObject *parent)
    : QSortFilterProxyModel(parent)
    , log(messageLog)
{
    setSourceModel(&log);
}

void MessageFilter::setKind(std::optional<MessageKind> kind)
{
    wantedKind = kind;
    invalidateRowsFilter();
}

void MessageFilter::setText(const QString &text)
{
    wantedText = text;
    invalidateRowsFilter();
}

QString MessageFilter::line(int row) const
{
    const Message &message = log.at(mapToSource(index(row, 0)).row());
    return message.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")) + u'\t' + nameOf(message.kind)
        + u'\t' + message.text;
}

bool MessageFilter::filterAcceptsRow(int row, const QModelIndex &) const
{
    const Message &message = log.at(row);
    return (!wantedKind || message.kind == *wantedKind)
        && (wantedText.isEmpty() || message.text.contains(wantedText, Qt::CaseInsensitive));
}

} // namespace tarnPanel
