#include "client/command_catalogue.h"
#include "unit/client/client_fixture.h"

using namespace tarnClientTest;
using tarn::Accessory;
using tarn::Client;
using tarn::Colour;
using tarn::Outcome;
using tarn::Profile;
using tarn::Reply;

namespace {

// Answers each request with fixed fields and keeps what was asked.
class CommandsTest : public ClientTest
{
protected:
    CommandsTest()
    {
        service.onRequest([this](QJsonObject request) {
            for (auto field = answer.constBegin(); field != answer.constEnd(); ++field)
                request.insert(field.key(), field.value());
            service.write(compact(request));
        });
        openAndConnect();
    }

    // The reply when the service adds these fields; it has to be to this request.
    template <typename T>
    [[nodiscard]] T replyTo(const QFuture<T> &future, const QJsonObject &expectedRequest)
    {
        const T reply = endOf(future);
        QJsonObject request =
            QJsonDocument::fromJson(service.requests().value(service.requests().size() - 1)).object();
        request.remove("id");
        EXPECT_EQ(compact(request).toStdString(), compact(expectedRequest).toStdString());
        asked << request.value("cmd").toString();
        return reply;
    }

    void answers(const QJsonObject &fields) { answer = fields; }
    void answersData(const QString &data) { answer = {{"data", data}}; }
    void answersResult(const QString &result) { answer = {{"result", result}}; }

    static QJsonObject query(const QString &command) { return {{"cmd", command}}; }
    static QJsonObject order(const QString &command, const QString &data)
    {
        return {{"cmd", command}, {"data", data}};
    }

    QJsonObject answer;
    QStringList asked;
};

} // namespace

TEST_F(CommandsTest, EachCommandHasAnOperation)
{
    answersData("k_vane");
    EXPECT_EQ(replyTo(client.getAccessoryType(), query("getAccessoryType")).result(), Accessory::KVane);
    answersData("1.23");
    EXPECT_EQ(replyTo(client.getMcuVersion(), query("getMcuVersion")).result(), "1.23");
    answersData("7");
    EXPECT_EQ(replyTo(client.getHardwareVersion(), query("getHardwareVersion")).result(), 7);
    answersData("4");
    EXPECT_EQ(replyTo(client.getAccessoryCode(), query("getAccessoryCode")).result(), 4);
    answers({{"mcuVer", "1.23"}, {"hardwareVer", "7"}, {"accessoryCode", "4"}});
    const auto parameters =
        replyTo(client.getMcuUpdateParameters(), query("getMcuUpdateParameters")).result();
    ASSERT_TRUE(parameters.has_value());
    EXPECT_EQ(parameters->mcuVersion, "1.23");
    EXPECT_EQ(parameters->hardwareVersion, 7);
    EXPECT_EQ(parameters->accessoryCode, 4);

    answersResult("1");
    EXPECT_EQ(replyTo(client.powerModeControlFirst(), order("powerModeControl", "first")).result(),
        Profile::Balance);
    answersResult("successed");
    EXPECT_TRUE(
        replyTo(client.powerModeControl(Profile::Low), order("powerModeControl", "low")).isAnswered());
    answersData("high");
    EXPECT_EQ(replyTo(client.getTarnPowerMode(), query("getTarnPowerMode")).result(), Profile::High);
    answersResult("successed");
    EXPECT_TRUE(
        replyTo(client.setTarnPowerMode(Profile::High), order("setTarnPowerMode", "high")).isAnswered());

    answersData("on");
    EXPECT_EQ(replyTo(client.getDockLedStatus(), query("getDockLedStatus")).result(), true);
    answersResult("successed");
    EXPECT_TRUE(replyTo(client.setDockLedStatus(false), order("setDockLedStatus", "off")).isAnswered());
    answersData("purplishred");
    EXPECT_EQ(replyTo(client.getGraphicsRGB(), query("getGraphicsRGB")).result(), Colour::PurplishRed);
    answersResult("successed");
    EXPECT_TRUE(replyTo(client.setGraphicsRGB(Colour::Cyan), order("setGraphicsRGB", "cyan")).isAnswered());
    answers({{"data", "red"}, {"result", "successed"}});
    const auto colour = replyTo(client.setGraphicsRGBOn(), order("setGraphicsRGB", "on"));
    EXPECT_EQ(colour.result(), Colour::Red);
    EXPECT_EQ(colour.value(), "successed");
    answers({});
    EXPECT_TRUE(
        replyTo(client.requestBeginGraphicsMcuUpdate(), query("requestBeginGraphicsMcuUpdate")).isAnswered());

    answersData("OFF");
    EXPECT_EQ(replyTo(client.getSmartChargingStatus(), query("getSmartChargingStatus")).result(), false);
    answersResult("successed");
    EXPECT_TRUE(
        replyTo(client.setSmartChargingStatus(true), order("setSmartChargingStatus", "ON")).isAnswered());

    answersData("CDAB8967452301");
    EXPECT_EQ(replyTo(client.getTarnKvaneSnCode(), query("getTarnKvaneSnCode")).result(), "CDAB8967452301");
    answers({});
    const Reply light = replyTo(client.setKVaneLedLight(255), order("setKVaneLedLight", "255"));
    EXPECT_TRUE(light.isAnswered());
    EXPECT_TRUE(light.value().isEmpty()); // the service only sends the request back
    answersData("128");
    EXPECT_EQ(replyTo(client.getKVaneLedLight(), query("getKVaneLedLight")).result(), 128);
    answersData("1");
    EXPECT_EQ(replyTo(client.getKvaneChargingStatus(), query("getKvaneChargingStatus")).result(), true);
    answersData("100");
    EXPECT_EQ(replyTo(client.getKvaneBatteryNum(), query("getKvaneBatteryNum")).result(), 100);
    answersData("0");
    EXPECT_EQ(replyTo(client.getTarnChargingStatus(), query("getTarnChargingStatus")).result(), false);
    EXPECT_EQ(replyTo(client.getTarnBatteryNum(), query("getTarnBatteryNum")).result(), 0);

    answers({{"data", "successed"}, {"mcuVer", "1.24"}});
    const auto update = replyTo(client.requestMcuUpdate("kvane.bin"), order("requestMcuUpdate", "kvane.bin"));
    EXPECT_EQ(update.result(), "1.24");
    EXPECT_EQ(update.value(), "successed");
    answersData("successed");
    EXPECT_TRUE(replyTo(client.requestEnterMcuUpdateMode(), query("requestEnterMcuUpdateMode")).isAnswered());
    answersData("2.05");
    EXPECT_EQ(
        replyTo(client.requestLeaveMcuUpdateMode(), query("requestLeaveMcuUpdateMode")).result(), "2.05");
    answersData("successed");
    EXPECT_TRUE(replyTo(client.requestStartEcUpdate(), query("requestStartEcUpdate")).isAnswered());
    EXPECT_TRUE(replyTo(client.requestEcUpdate("ec.bin"), order("requestEcUpdate", "ec.bin")).isAnswered());

    asked.removeDuplicates();
    QStringList all;
    for (const tarn::CommandEntry &entry : tarn::commandCatalogue())
        all << entry.name;
    asked.sort();
    all.sort();
    EXPECT_EQ(asked, all);
}

TEST_F(CommandsTest, WordsForUnknownHaveNoResult)
{
    answersData("");
    EXPECT_EQ(endOf(client.getMcuVersion()).result(), std::nullopt);
    EXPECT_EQ(endOf(client.getHardwareVersion()).result(), std::nullopt);
    EXPECT_EQ(endOf(client.getAccessoryCode()).result(), std::nullopt);
    EXPECT_EQ(endOf(client.getAccessoryType()).result(), Accessory::Unknown);
    answersData("251");
    EXPECT_EQ(endOf(client.getTarnChargingStatus()).result(), std::nullopt);
    EXPECT_EQ(endOf(client.getKvaneChargingStatus()).result(), std::nullopt);
    EXPECT_EQ(endOf(client.getTarnBatteryNum()).result(), std::nullopt);
    answersData("101");
    EXPECT_EQ(endOf(client.getKvaneBatteryNum()).result(), std::nullopt);
    answersData("-1");
    EXPECT_EQ(endOf(client.getKVaneLedLight()).result(), std::nullopt);
    answersData("256");
    EXPECT_EQ(endOf(client.getKVaneLedLight()).result(), std::nullopt);
    answersData("unknown");
    EXPECT_EQ(endOf(client.getDockLedStatus()).result(), std::nullopt);
    answersData("hide");
    const auto mode = endOf(client.getTarnPowerMode());
    EXPECT_EQ(mode.result(), std::nullopt);
    EXPECT_EQ(mode.outcome(), Outcome::Answered);
    EXPECT_EQ(mode.value(), "hide");
    answersData("default");
    EXPECT_EQ(endOf(client.getTarnKvaneSnCode()).result(), std::nullopt);
    answersData("pink");
    EXPECT_EQ(endOf(client.getGraphicsRGB()).result(), std::nullopt);
    for (const char *number : {"-2", "-10", "3"}) {
        answersResult(number);
        const auto first = endOf(client.powerModeControlFirst());
        EXPECT_EQ(first.result(), std::nullopt) << number;
        EXPECT_EQ(first.value(), number);
    }
}

TEST_F(CommandsTest, AFailureHasNoResult)
{
    answersData("failed");
    const auto charging = endOf(client.getSmartChargingStatus());
    EXPECT_EQ(charging.outcome(), Outcome::Failed);
    EXPECT_EQ(charging.result(), std::nullopt);
    answers({{"data", "failed"}, {"mcuVer", "1.24"}});
    EXPECT_EQ(endOf(client.requestMcuUpdate("kvane.bin")).result(), std::nullopt);
    answers({{"data", "red"}, {"result", "failed"}});
    EXPECT_EQ(endOf(client.setGraphicsRGBOn()).result(), std::nullopt);
}

TEST_F(CommandsTest, FirmwareNamesThatTheServiceWouldNotTakeAreNotSent)
{
    const auto mcu = endOf(client.requestMcuUpdate("../kvane.bin"));
    EXPECT_EQ(mcu.outcome(), Outcome::Refused);
    EXPECT_TRUE(mcu.reason().startsWith("The service refuses a name that holds a path"))
        << mcu.reason().toStdString();
    EXPECT_EQ(mcu.command(), "requestMcuUpdate");
    const Reply ec = endOf(client.requestEcUpdate("BIOS_0105.bin"));
    EXPECT_EQ(ec.outcome(), Outcome::Refused);
    EXPECT_TRUE(ec.reason().startsWith("The name holds \"IO\"")) << ec.reason().toStdString();
    EXPECT_TRUE(service.requests().isEmpty());
}
