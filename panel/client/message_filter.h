#pragma once

#include "panel/client/message.h"

#include <QSortFilterProxyModel>

#include <optional>

namespace tarnPanel {

class MessageLog;

// The messages of one kind, or of all, that contain a text.
class MessageFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit MessageFilter(MessageLog &log, QObject *parent = nullptr);

    void setKind(std::optional<MessageKind> kind);
    void setText(const QString &text);
    // As it is copied: time, kind and the whole text.
    [[nodiscard]] QString line(int row) const;

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    MessageLog &log;
    std::optional<MessageKind> wantedKind;
    QString wantedText;
};

} // namespace tarnPanel
