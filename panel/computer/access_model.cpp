#include "panel/computer/access_model.h"

#include "simulator/tool/tool_text.h"
#include "simulator/value_text.h"

#include <algorithm>
#include <array>

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

constexpr std::array<const char *, AccessModel::ColumnCount> headers {
    "No.", "Time (s)", "Kind", "Register", "Value"};

QString textOf(const RegisterAccess &access, int column)
{
    switch (column) {
    case AccessModel::Number:
        return QString::number(access.number);
    case AccessModel::Time:
        return QString::number(static_cast<double>(access.timeMs) / 1000, 'f', 3);
    case AccessModel::Kind:
        return access.kind == AccessKind::Read ? QStringLiteral("read") : QStringLiteral("write");
    case AccessModel::Register:
        return registerText(access.address);
    default:
        return QStringLiteral("%1 (%2)").arg(toQString(hexText(access.value, 2))).arg(access.value);
    }
}

} // namespace

void AccessModel::append(const std::vector<RegisterAccess> &accesses)
{
    std::deque<Place> fitting;
    for (const RegisterAccess &access : accesses) {
        if (filter.fits(access))
            fitting.push_back(firstKept + kept.size());
        kept.push_back(access);
    }
    if (paused)
        waiting.insert(waiting.end(), fitting.begin(), fitting.end());
    else
        showMore(fitting);
    keepBound();
}

void AccessModel::clear()
{
    beginResetModel();
    firstKept += kept.size();
    kept.clear();
    shown.clear();
    waiting.clear();
    pausedAt = firstKept;
    gone = 0;
    endResetModel();
}

// While it is paused, the rows stay those from before the pause.
void AccessModel::setFilter(const AccessFilter &chosen)
{
    beginResetModel();
    filter = chosen;
    shown.clear();
    waiting.clear();
    for (Place place = firstKept; place < firstKept + kept.size(); ++place) {
        if (filter.fits(at(place)))
            (paused && place >= pausedAt ? waiting : shown).push_back(place);
    }
    endResetModel();
}

void AccessModel::setPaused(bool pause)
{
    if (paused == pause)
        return;
    paused = pause;
    gone = 0;
    if (paused) {
        pausedAt = firstKept + kept.size();
        return;
    }
    const std::deque<Place> since = std::exchange(waiting, {});
    showMore(since);
    keepBound();
}

int AccessModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(shown.size());
}

int AccessModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant AccessModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const bool isNumber = index.column() == Number || index.column() == Time;
    if (role == Qt::TextAlignmentRole && isNumber)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    return textOf(at(shown[static_cast<std::size_t>(index.row())]), index.column());
}

QVariant AccessModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QString::fromLatin1(headers.at(static_cast<std::size_t>(section)));
}

void AccessModel::showMore(const std::deque<Place> &places)
{
    if (places.empty())
        return;
    const int first = static_cast<int>(shown.size());
    beginInsertRows({}, first, first + static_cast<int>(places.size()) - 1);
    shown.insert(shown.end(), places.begin(), places.end());
    endInsertRows();
}

void AccessModel::keepBound()
{
    while (kept.size() > capacity + (paused ? roomForPause : 0))
        removeOldest();
}

void AccessModel::removeOldest()
{
    const auto count = static_cast<std::ptrdiff_t>(std::min(removedAtOnce, kept.size()));
    const Place next = firstKept + static_cast<Place>(count);
    const auto end = std::ranges::lower_bound(shown, next);
    const auto rows = static_cast<int>(end - shown.begin());
    if (rows > 0)
        beginRemoveRows({}, 0, rows - 1);
    shown.erase(shown.begin(), end);
    kept.erase(kept.begin(), kept.begin() + count);
    firstKept = next;
    gone += paused ? static_cast<std::size_t>(count) : 0;
    if (rows > 0)
        endRemoveRows();
    waiting.erase(waiting.begin(), std::ranges::lower_bound(waiting, next));
}

const RegisterAccess &AccessModel::at(Place place) const
{
    return kept[static_cast<std::size_t>(place - firstKept)];
}

} // namespace tarnPanel
