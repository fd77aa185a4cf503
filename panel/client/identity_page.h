#pragma once

#include "panel/client/age.h"

#include <tarn/client.h>

#include <QWidget>

#include <array>
#include <optional>

namespace tarnPanel {

class QuestionQueue;
class ServiceLink;
class ToneLabel;

// What is attached, which versions it has, and the batteries, each with its age.
class IdentityPage : public QWidget
{
    Q_OBJECT

public:
    IdentityPage(ServiceLink &link, QuestionQueue &questions, QWidget *parent = nullptr);

    // Asks the EC for the versions of what is attached. The client library keeps the other values.
    void read();
    // Those too.
    void readAll();
    void refreshAges();

private:
    enum Row {
        Accessory,
        Code,
        McuVersion,
        HardwareVersion,
        SerialNumber,
        Battery,
        Charging,
        KvaneBattery,
        KvaneCharging,
        RowCount
    };

    struct Known
    {
        std::optional<QString> text;
        // Why it is not known, or from when it is.
        QString remark;
        Age age;
        bool isOld = false;
    };

    void listen();
    [[nodiscard]] bool isAnyAttached() const;
    void readVersions();
    void readSerialNumber();
    void readKvane();
    template <typename T>
    void readValue(Row row, const QString &command, QFuture<tarn::ReplyWith<T>> (tarn::Client::*get)(),
        std::optional<QString> (*textOf)(std::optional<T>));
    void take(Row row, const std::optional<QString> &text, const QString &remark = {});
    void takeFailure(Row row, const tarn::Reply &reply);
    void followLink();
    void refresh(Row row);

    ServiceLink &link;
    QuestionQueue &questions;
    std::array<Known, RowCount> known;
    std::array<ToneLabel *, RowCount> labels {};
    // Counts the accessories: an answer belongs to the one that was attached when it was asked for.
    int attachment = 0;
};

} // namespace tarnPanel
