#include "panel/client/identity_page.h"

#include "panel/client/connection_text.h"
#include "panel/client/question_queue.h"
#include "panel/client/service_link.h"
#include "panel/look/tone_label.h"

#include <QGridLayout>

namespace tarnPanel {

namespace {

struct IdentityRow
{
    QLatin1StringView name;
    QLatin1StringView label;
};

constexpr IdentityRow identityRows[] = {
    {QLatin1StringView("accessory"), QLatin1StringView("Accessory")},
    {QLatin1StringView("accessoryCode"), QLatin1StringView("Its code in the EC")},
    {QLatin1StringView("mcuVersion"), QLatin1StringView("MCU version")},
    {QLatin1StringView("hardwareVersion"), QLatin1StringView("Hardware version")},
    {QLatin1StringView("kvaneSerialNumber"), QLatin1StringView("KVane serial number")},
    {QLatin1StringView("battery"), QLatin1StringView("Computer's battery")},
    {QLatin1StringView("charging"), QLatin1StringView("Computer charges")},
    {QLatin1StringView("kvaneBattery"), QLatin1StringView("KVane's battery")},
    {QLatin1StringView("kvaneCharging"), QLatin1StringView("KVane charges")},
};

const QString needsKvane = QStringLiteral("no KVane is attached");

std::optional<QString> percentText(std::optional<int> value)
{
    return value ? std::optional(QStringLiteral("%1 %").arg(*value)) : std::nullopt;
}

std::optional<QString> yesText(std::optional<bool> value)
{
    if (!value)
        return std::nullopt;
    return *value ? QStringLiteral("yes") : QStringLiteral("no, or not readable");
}

std::optional<QString> kindText(std::optional<tarn::Accessory> value)
{
    return value ? std::optional(accessoryText(value)) : std::nullopt;
}

std::optional<QString> numberText(std::optional<int> value)
{
    return value ? std::optional(QString::number(*value)) : std::nullopt;
}

std::optional<QString> filledText(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

IdentityPage::IdentityPage(ServiceLink &serviceLink, QuestionQueue &questionQueue, QWidget *parent)
    : QWidget(parent)
    , link(serviceLink)
    , questions(questionQueue)
{
    auto *grid = new QGridLayout(this);
    grid->setColumnStretch(1, 1);
    for (int row = 0; row < RowCount; ++row) {
        const auto at = static_cast<std::size_t>(row);
        auto *value = new ToneLabel(identityRows[at].name.toString());
        value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        value->setFocusPolicy(Qt::StrongFocus);
        value->setAccessibleName(identityRows[at].label.toString());
        labels[at] = value;
        grid->addWidget(new QLabel(identityRows[at].label.toString()), row, 0, Qt::AlignTop);
        grid->addWidget(value, row, 1);
    }
    grid->setRowStretch(RowCount, 1);
    listen();
    refreshAges();
}

void IdentityPage::listen()
{
    using tarn::Client;
    Client *client = &link.client();
    connect(&link, &ServiceLink::changed, this, &IdentityPage::followLink);
    connect(&link, &ServiceLink::accessoryChanged, this, [this](std::optional<tarn::Accessory> now) {
        take(Accessory, now ? std::optional(accessoryText(now)) : std::nullopt);
        if (!now)
            return;
        ++attachment;
        const QString gone =
            *now == tarn::Accessory::Disconnected ? QStringLiteral("nothing is attached") : QString();
        for (const Row row : {Code, McuVersion, HardwareVersion})
            take(row, std::nullopt, gone);
        for (const Row row : {SerialNumber, KvaneBattery, KvaneCharging})
            take(row, std::nullopt, *now == tarn::Accessory::KVane ? QString() : needsKvane);
        // What the client library keeps was told at some time before.
        if (*now == tarn::Accessory::KVane)
            readKvane();
    });
    connect(client, &Client::batteryLevelChanged, this,
        [this](std::optional<int> now) { take(Battery, percentText(now)); });
    connect(client, &Client::chargingChanged, this,
        [this](std::optional<bool> now) { take(Charging, yesText(now)); });
    // Without a KVane they are those of the last one.
    connect(client, &Client::kvaneBatteryLevelChanged, this, [this](std::optional<int> now) {
        if (!now || link.accessory() == tarn::Accessory::KVane)
            take(KvaneBattery, percentText(now));
    });
    connect(client, &Client::kvaneChargingChanged, this, [this](std::optional<bool> now) {
        if (!now || link.accessory() == tarn::Accessory::KVane)
            take(KvaneCharging, yesText(now));
    });
}

void IdentityPage::followLink()
{
    if (link.isConnected())
        return;
    for (Known &one : known)
        one.isOld = one.text.has_value();
    refreshAges();
}

bool IdentityPage::isAnyAttached() const
{
    return link.accessory() && *link.accessory() != tarn::Accessory::Disconnected;
}

void IdentityPage::read()
{
    if (!isAnyAttached())
        return;
    readVersions();
    if (link.accessory() == tarn::Accessory::KVane)
        readSerialNumber();
}

void IdentityPage::readVersions()
{
    using Parameters = tarn::ReplyWith<tarn::McuUpdateParameters>;
    const QString command = QStringLiteral("getMcuUpdateParameters");
    questions.add(command, [this, command](const std::function<void()> &done) {
        // It may have been unplugged while the question waited, or goes while it is answered.
        if (!isAnyAttached())
            return done();
        const auto use = [this, done, asked = attachment](const Parameters &reply) {
            if (asked != attachment)
                return done();
            if (const auto all = reply.result()) {
                take(McuVersion, filledText(all->mcuVersion));
                take(HardwareVersion, numberText(all->hardwareVersion));
                take(Code, numberText(all->accessoryCode));
            } else {
                for (const Row row : {McuVersion, HardwareVersion, Code})
                    takeFailure(row, reply);
            }
            done();
        };
        link.follow<Parameters>(command, link.client().getMcuUpdateParameters(), this, use);
    });
}

void IdentityPage::readSerialNumber()
{
    using Number = tarn::ReplyWith<QString>;
    const QString command = QStringLiteral("getTarnKvaneSnCode");
    questions.add(command, [this, command](const std::function<void()> &done) {
        if (link.accessory() != tarn::Accessory::KVane)
            return done();
        const auto use = [this, done, asked = attachment](const Number &reply) {
            if (asked != attachment)
                return done();
            if (reply.result())
                take(SerialNumber, reply.result());
            else
                takeFailure(SerialNumber, reply);
            done();
        };
        link.follow<Number>(command, link.client().getTarnKvaneSnCode(), this, use);
    });
}

void IdentityPage::readAll()
{
    readValue<tarn::Accessory>(
        Accessory, QStringLiteral("getAccessoryType"), &tarn::Client::getAccessoryType, kindText);
    readValue<int>(
        Battery, QStringLiteral("getTarnBatteryNum"), &tarn::Client::getTarnBatteryNum, percentText);
    readValue<bool>(
        Charging, QStringLiteral("getTarnChargingStatus"), &tarn::Client::getTarnChargingStatus, yesText);
    if (link.accessory() == tarn::Accessory::KVane)
        readKvane();
    read();
}

void IdentityPage::readKvane()
{
    readValue<int>(
        KvaneBattery, QStringLiteral("getKvaneBatteryNum"), &tarn::Client::getKvaneBatteryNum, percentText);
    readValue<bool>(KvaneCharging, QStringLiteral("getKvaneChargingStatus"),
        &tarn::Client::getKvaneChargingStatus, yesText);
}

// What the client library keeps arrives by itself when it changes; this makes it new when it has not.
template <typename T>
void IdentityPage::readValue(Row row, const QString &command,
    QFuture<tarn::ReplyWith<T>> (tarn::Client::*get)(), std::optional<QString> (*textOf)(std::optional<T>))
{
    questions.add(command, [this, row, command, get, textOf](const std::function<void()> &done) {
        const auto use = [this, row, textOf, done, asked = attachment](const tarn::ReplyWith<T> &reply) {
            if (asked == attachment && reply.result())
                take(row, textOf(reply.result()));
            else if (asked == attachment)
                takeFailure(row, reply);
            done();
        };
        link.follow<tarn::ReplyWith<T>>(command, (link.client().*get)(), this, use);
    });
}

void IdentityPage::take(Row row, const std::optional<QString> &text, const QString &remark)
{
    Known &one = known[static_cast<std::size_t>(row)];
    // While there is no connection the client knows nothing; what was known stays, as old.
    if (!text && !link.isConnected()) {
        one.isOld = one.text.has_value();
    } else {
        one.text = text;
        one.remark = remark;
        one.isOld = false;
        one.age.begin();
    }
    refresh(row);
}

void IdentityPage::takeFailure(Row row, const tarn::Reply &reply)
{
    Known &one = known[static_cast<std::size_t>(row)];
    one.isOld = one.text.has_value();
    one.remark = reply.isAnswered() ? QStringLiteral("the service could not read it") : reply.reason();
    refresh(row);
}

void IdentityPage::refresh(Row row)
{
    const auto at = static_cast<std::size_t>(row);
    const Known &one = known[at];
    const QString remark = one.remark.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(one.remark);
    const QString lasting =
        one.text.value_or(QStringLiteral("unknown")) + (one.isOld ? QStringLiteral(" (old)") : QString());
    const QString age = one.text ? QStringLiteral(", read ") + one.age.text() : QString();
    labels[at]->say(lasting + age + remark,
        one.text && !one.isOld ? std::nullopt : std::optional(one.isOld ? Tone::Waiting : Tone::Quiet));
    if (labels[at]->accessibleDescription() != lasting + remark)
        labels[at]->setAccessibleDescription(lasting + remark);
}

void IdentityPage::refreshAges()
{
    for (int row = 0; row < RowCount; ++row)
        refresh(static_cast<Row>(row));
}

} // namespace tarnPanel
