#pragma once

#include "panel/computer/access_filter.h"

#include <QAbstractTableModel>

#include <deque>
#include <vector>

namespace tarnPanel {

// The last register accesses. All are kept, whatever the filter is, so that a filter that is taken away shows
// them again. While it is paused nothing is added to the rows.
class AccessModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Number, Time, Kind, Register, Value, ColumnCount };
    static constexpr std::size_t capacity = 100000;
    // What may come during a pause before the rows that it holds have to go.
    static constexpr std::size_t roomForPause = 100000;
    // Removed at once when the capacity is reached, because removing one row costs as much as many.
    static constexpr std::size_t removedAtOnce = 5000;

    using QAbstractTableModel::QAbstractTableModel;

    void append(const std::vector<tarnSimulator::RegisterAccess> &accesses);
    void clear();
    void setFilter(const AccessFilter &chosen);
    void setPaused(bool pause);
    [[nodiscard]] bool isPaused() const { return paused; }

    [[nodiscard]] std::size_t keptCount() const { return kept.size(); }
    // Those that fit and have come since the pause began.
    [[nodiscard]] std::size_t heldBack() const { return waiting.size(); }
    // Accesses that a pause has not outlasted, whether they fit or not.
    [[nodiscard]] std::size_t goneInPause() const { return gone; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    // Counted from the first access that was ever appended, so that it stays when others are removed.
    using Place = quint64;

    void showMore(const std::deque<Place> &places);
    void keepBound();
    void removeOldest();
    [[nodiscard]] const tarnSimulator::RegisterAccess &at(Place place) const;

    std::deque<tarnSimulator::RegisterAccess> kept;
    std::deque<Place> shown;
    std::deque<Place> waiting;
    Place firstKept = 0;
    AccessFilter filter;
    bool paused = false;
    Place pausedAt = 0;
    std::size_t gone = 0;
};

} // namespace tarnPanel
