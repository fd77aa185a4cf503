#include "device/ec_registers.h"
#include "panel/computer/access_model.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

using namespace tarnPanel;
using namespace tarnDeviceInfos;
using tarnSimulator::AccessKind;
using tarnSimulator::RegisterAccess;

namespace {

static_assert(sizeof(RegisterAccess) == 24);

// Reads of PL1 and writes of PL2 by turns.
std::vector<RegisterAccess> accessesFrom(std::uint64_t first, std::size_t count)
{
    std::vector<RegisterAccess> accesses;
    for (std::uint64_t number = first; number < first + count; ++number) {
        const bool isRead = number % 2 == 1;
        accesses.push_back({number, number * 20, isRead ? AccessKind::Read : AccessKind::Write,
            isRead ? EC_POWERMODE_PL1 : EC_POWERMODE_PL2, static_cast<std::uint8_t>(number)});
    }
    return accesses;
}

QString cell(const AccessModel &model, int row, int column)
{
    return model.index(row, column).data().toString();
}

} // namespace

TEST(AccessModel, ShowsNumberTimeKindRegisterAndValue)
{
    AccessModel model;
    model.append(
        {{363, 5234808, AccessKind::Write, EC_POWERMODE_PL1, 28}, {364, 1, AccessKind::Read, 0x1234, 3}});
    ASSERT_EQ(model.rowCount(), 2);
    EXPECT_EQ(cell(model, 0, AccessModel::Number), QStringLiteral("363"));
    EXPECT_EQ(cell(model, 0, AccessModel::Time), QStringLiteral("5234.808"));
    EXPECT_EQ(cell(model, 0, AccessModel::Kind), QStringLiteral("write"));
    EXPECT_EQ(cell(model, 0, AccessModel::Register), QStringLiteral("0x04A8 EC_POWERMODE_PL1"));
    EXPECT_EQ(cell(model, 0, AccessModel::Value), QStringLiteral("0x1C (28)"));
    EXPECT_EQ(cell(model, 1, AccessModel::Kind), QStringLiteral("read"));
    EXPECT_EQ(cell(model, 1, AccessModel::Register), QStringLiteral("0x1234"));
}

TEST(AccessModel, KeepsItsBoundAndTheNewest)
{
    AccessModel model;
    constexpr std::uint64_t all = 200000;
    constexpr std::size_t step = 50;
    qint64 takenNs = 0;
    for (std::uint64_t first = 1; first <= all; first += step) {
        const auto accesses = accessesFrom(first, step);
        QElapsedTimer timer;
        timer.start();
        model.append(accesses);
        takenNs += timer.nsecsElapsed();
        ASSERT_LE(model.keptCount(), AccessModel::capacity);
    }
    EXPECT_GT(model.keptCount(), AccessModel::capacity - AccessModel::removedAtOnce);
    EXPECT_EQ(model.rowCount(), static_cast<int>(model.keptCount()));
    EXPECT_EQ(cell(model, model.rowCount() - 1, AccessModel::Number), QString::number(all));
    EXPECT_EQ(cell(model, 0, AccessModel::Number), QString::number(all - model.keptCount() + 1));
    // A step takes some microseconds; a millisecond would be work for every row that is kept.
    const auto stepNs = takenNs / static_cast<qint64>(all / step);
    EXPECT_LT(stepNs, 1000000);
    RecordProperty("stepNs", std::to_string(stepNs));
}

TEST(AccessModel, FiltersByNameAddressAndKindAndForgetsNothing)
{
    AccessModel model;
    model.append(accessesFrom(1, 100000));
    model.setFilter({QStringLiteral("pl2"), AccessFilter::Kinds::Both});
    EXPECT_EQ(model.rowCount(), 50000);
    EXPECT_EQ(cell(model, 7, AccessModel::Register), QStringLiteral("0x04A9 EC_POWERMODE_PL2"));
    model.append(accessesFrom(100001, 10));
    EXPECT_LE(model.rowCount(), 50005);
    EXPECT_EQ(cell(model, model.rowCount() - 1, AccessModel::Number), QStringLiteral("100010"));
    model.setFilter({QStringLiteral("0x04a8"), AccessFilter::Kinds::Both});
    EXPECT_EQ(cell(model, model.rowCount() - 1, AccessModel::Number), QStringLiteral("100009"));
    model.setFilter({QStringLiteral("pl2"), AccessFilter::Kinds::Reads});
    EXPECT_EQ(model.rowCount(), 0);
    model.setFilter({QStringLiteral("nothing pl1 pl2"), AccessFilter::Kinds::Writes});
    EXPECT_EQ(cell(model, model.rowCount() - 1, AccessModel::Kind), QStringLiteral("write"));
    model.setFilter({});
    EXPECT_EQ(model.rowCount(), static_cast<int>(model.keptCount()));
}

TEST(AccessModel, APauseHoldsTheRowsAndCountsTheOthers)
{
    AccessModel model;
    model.append(accessesFrom(1, 10));
    model.setPaused(true);
    model.append(accessesFrom(11, 6));
    EXPECT_EQ(model.rowCount(), 10);
    EXPECT_EQ(model.heldBack(), 6U);
    model.setFilter({QStringLiteral("PL1"), AccessFilter::Kinds::Both});
    EXPECT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.heldBack(), 3U);
    model.setFilter({});
    EXPECT_EQ(model.rowCount(), 10);
    EXPECT_EQ(model.heldBack(), 6U);
    model.setPaused(false);
    EXPECT_EQ(model.rowCount(), 16);
    EXPECT_EQ(model.heldBack(), 0U);
    EXPECT_EQ(cell(model, 15, AccessModel::Number), QStringLiteral("16"));
}

// The rows do not fit first, so nothing that waits tells when the pause began.
TEST(AccessModel, APauseOutlastsEveryFilter)
{
    AccessModel model;
    model.append(accessesFrom(1, 10));
    model.setPaused(true);
    model.append(accessesFrom(11, 6));
    model.setFilter({QStringLiteral("no register has this name"), AccessFilter::Kinds::Both});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.heldBack(), 0U);
    model.setFilter({});
    EXPECT_EQ(model.rowCount(), 10);
    EXPECT_EQ(model.heldBack(), 6U);
}

TEST(AccessModel, APauseHoldsAFullListAndSaysWhatItCannotHold)
{
    AccessModel model;
    model.append(accessesFrom(1, AccessModel::capacity));
    model.setPaused(true);
    model.append(accessesFrom(AccessModel::capacity + 1, AccessModel::roomForPause));
    EXPECT_EQ(model.rowCount(), static_cast<int>(AccessModel::capacity));
    EXPECT_EQ(model.goneInPause(), 0U);
    EXPECT_EQ(model.heldBack(), AccessModel::roomForPause);
    model.append(accessesFrom(AccessModel::capacity + AccessModel::roomForPause + 1, 1));
    EXPECT_EQ(model.goneInPause(), AccessModel::removedAtOnce);
    EXPECT_EQ(model.rowCount(), static_cast<int>(AccessModel::capacity - AccessModel::removedAtOnce));
    model.setPaused(false);
    EXPECT_LE(model.keptCount(), AccessModel::capacity);
    EXPECT_EQ(model.rowCount(), static_cast<int>(model.keptCount()));
    EXPECT_EQ(model.goneInPause(), 0U);
}
