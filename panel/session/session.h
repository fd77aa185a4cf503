#pragma once

#include "panel/session/command.h"
#include "panel/session/shell.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QList>

namespace tarnPanel {

// What has been done in this window, on either side, as commands that do the same; the newest is the last
// row. Keeps the last 10,000.
class Session : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Time, Text, ColumnCount };
    static constexpr int capacity = 10000;

    using QAbstractTableModel::QAbstractTableModel;

    // To be called when the command is carried out. `now` is for tests.
    void add(const Command &command, const QDateTime &now = QDateTime::currentDateTime());

    // The newest, as shellText() gives it; empty before the first.
    [[nodiscard]] QString lastText() const;
    // A script that does all of it again in the same order, with the pauses between the commands as they
    // were, but none longer than a minute. `folder` is where the programs lie.
    [[nodiscard]] QString script(const QString &folder, const Shell &shell = systemShell()) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Entry
    {
        QDateTime time;
        Command command;
    };

    QList<Entry> entries;
    qint64 dropped = 0;
};

} // namespace tarnPanel
