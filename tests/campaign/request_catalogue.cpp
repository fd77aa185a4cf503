#include "request_catalogue.h"

#include "support/command_samples.h"

#include <vector>

namespace tarnCampaign {

using tarnTest::EcHold;

namespace {

struct RequestRow
{
    QString command;
    QStringList data; // one of them
    bool withoutEc = false;
};

std::vector<RequestRow> knownCommands()
{
    std::vector<RequestRow> rows;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
        const EcHold hold = tarnTest::sampleOf(command.name).hold;
        QStringList data = tarnTest::badData(command);
        if (hold != EcHold::ForGood)
            data = tarnTest::goodData(command) + data;
        if (data.isEmpty())
            continue;
        const bool isOfTheHold = hold == EcHold::Begins || hold == EcHold::Ends;
        rows.push_back({command.name, data, isOfTheHold || !command.needsEc});
    }
    return rows;
}

const std::vector<RequestRow> &catalogue()
{
    static const std::vector<RequestRow> rows = [] {
        std::vector<RequestRow> all = knownCommands();
        all.push_back({"noSuchCommand", {QString()}, true});
        return all;
    }();
    return rows;
}

} // namespace

QJsonObject randomRequest(RandomSource &random, bool withoutEc)
{
    const RequestRow *row = &random.oneOf(catalogue());
    while (withoutEc && !row->withoutEc)
        row = &random.oneOf(catalogue());
    QJsonObject request {{"cmd", row->command}, {"id", random.below(1000)}};
    const QString data = random.oneOf(row->data);
    if (!data.isNull())
        request.insert("data", data);
    return request;
}

} // namespace tarnCampaign
