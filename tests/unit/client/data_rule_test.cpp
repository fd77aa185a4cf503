#include "client/data_rule.h"

#include <gtest/gtest.h>

using tarn::DataKind;
using tarn::DataRule;

namespace {

const DataRule onOff {DataKind::Choice, {QLatin1StringView("on"), QLatin1StringView("off")}};

} // namespace

namespace {

struct DataCase
{
    DataKind kind;
    std::optional<QString> data;
    bool allowed;
};

// The name that a report shows.
void PrintTo(const DataCase &value, std::ostream *out)
{
    *out << static_cast<int>(value.kind) << ' '
         << value.data.value_or(QStringLiteral("(none)")).toStdString();
}

class DataRuleCases : public ::testing::TestWithParam<DataCase>
{ };

} // namespace

TEST_P(DataRuleCases, JudgesTheData)
{
    const DataRule rule = GetParam().kind == DataKind::Choice ? onOff : DataRule {GetParam().kind};
    const std::optional<QString> objection = rule.objection("someCommand", GetParam().data);
    EXPECT_EQ(!objection.has_value(), GetParam().allowed) << GetParam().data.value_or("(none)").toStdString();
    if (objection) {
        EXPECT_TRUE(objection->startsWith("someCommand "));
    }
}

INSTANTIATE_TEST_SUITE_P(Values, DataRuleCases,
    ::testing::Values(DataCase {DataKind::None, std::nullopt, true}, DataCase {DataKind::None, "x", false},
        DataCase {DataKind::None, "", false}, DataCase {DataKind::Choice, std::nullopt, false},
        DataCase {DataKind::Choice, "on", true}, DataCase {DataKind::Choice, "On", false},
        DataCase {DataKind::Choice, "", false}, DataCase {DataKind::Choice, "on ", false},
        DataCase {DataKind::Byte, "0", true}, DataCase {DataKind::Byte, "255", true},
        DataCase {DataKind::Byte, "256", false}, DataCase {DataKind::Byte, "-1", false},
        DataCase {DataKind::Byte, "+1", false}, DataCase {DataKind::Byte, "1.5", false},
        DataCase {DataKind::Byte, "abc", false}, DataCase {DataKind::Byte, "", false},
        DataCase {DataKind::Byte, "99999999999", false},
        DataCase {DataKind::McuFileName, "kvane 1.2.bin", true}, DataCase {DataKind::McuFileName, "", false},
        DataCase {DataKind::McuFileName, "../x.bin", false},
        DataCase {DataKind::McuFileName, "a\\x.bin", false},
        DataCase {DataKind::McuFileName, "C:x.bin", false}, DataCase {DataKind::McuFileName, "..", false},
        DataCase {DataKind::McuFileName, "-odd.bin", false},
        DataCase {DataKind::McuFileName, "aux.bin", false},
        DataCase {DataKind::McuFileName, "BIOS.bin", true},
        DataCase {DataKind::EcFileName, "ec-0105.bin", true},
        DataCase {DataKind::EcFileName, "tool.exe", false},
        DataCase {DataKind::EcFileName, "BIOS.bin", false}));

TEST(DataRuleTest, TellsWrongCaseFromWrongWord)
{
    EXPECT_EQ(onOff.objection("c", "ON").value(),
        "c takes \"on\", written exactly so (upper and lower case count).");
    EXPECT_EQ(onOff.objection("c", "blue").value(), "c does not take \"blue\". Allowed: on, off.");
    EXPECT_EQ(onOff.objection("c", std::nullopt).value(), "c needs data. Allowed: on, off.");
}
