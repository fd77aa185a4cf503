#pragma once

#include "end_to_end/service_client.h"
#include "end_to_end/service_process.h"
#include "load/load_scale.h"
#include "load/process_figures.h"

#include <gtest/gtest.h>

namespace tarnLoad {

// A service that is measured while other clients load or attack it.
class LoadedService : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // The normal client: milliseconds until the service has carried out its request, -1 for never. Each call
    // changes a value, and the change is seen in the EC, because replies wait their turn.
    [[nodiscard]] int msUntilObeyed(tarnTest::ServiceClient &client);
    // The same, which has to be as quick as without other clients; the milliseconds that it took.
    int expectObeyedAtOnce(tarnTest::ServiceClient &client);
    // Number of lines of the log that begin with the text.
    [[nodiscard]] qsizetype linesThatBegin(const char *text)
    {
        return service.logCount(QLatin1Char('\n') + QLatin1String(text));
    }
    [[nodiscard]] ProcessFigures figures() const { return figuresOf(service.process.processId()); }
    // CPU time of the service over the next seconds, in percent of a core.
    [[nodiscard]] double cpuPercent(int overMs);
    // All clients have left: the service has to cost what it did before, but for memory of its allocator.
    void expectAsIdleAs(const ProcessFigures &before, const char *name, double moreMib = 16);

    tarnTest::ServiceProcess service;

private:
    int obeyed = 0;
};

// A request that the service answers with its mark.
[[nodiscard]] QByteArray markedRequest(int mark, const QByteArray &ballast = {});
// The marks of the replies among these documents, in the order of arrival.
[[nodiscard]] QList<int> marksIn(const QByteArrayList &documents);
// The marks of what the service says to have sent, in its order.
[[nodiscard]] QList<int> sentMarks(const QString &log);

} // namespace tarnLoad
