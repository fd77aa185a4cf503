#pragma once

#include "panel/client/message.h"

#include <QAbstractTableModel>
#include <QList>
#include <QTimer>

#include <deque>

namespace tarnPanel {

// What has passed between the panel and the service, the newest last. Bounded in rows and in what is kept of
// each.
class MessageLog : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Time, Kind, Text, ColumnCount };
    static constexpr int capacity = 100000;
    // Rows leave together, because each removal moves all that follow.
    static constexpr int removedAtOnce = 1000;
    static constexpr int longestText = 4096;
    // Of all texts together.
    static constexpr qsizetype mostCharacters = qsizetype(32) * 1024 * 1024;

    explicit MessageLog(QObject *parent = nullptr);

    // The rows appear a moment later, together with others.
    void add(MessageKind kind, const QString &text);
    void clear();
    [[nodiscard]] const Message &at(int row) const { return messages.at(static_cast<std::size_t>(row)); }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    void takeArrived();
    void removeOldest();
    [[nodiscard]] QString cellText(const Message &message, int column) const;

    // Grows by pieces: a list from whose front is taken would double what it holds.
    std::deque<Message> messages;
    QList<Message> arrived;
    qsizetype characters = 0;
    QTimer taking;
};

} // namespace tarnPanel
