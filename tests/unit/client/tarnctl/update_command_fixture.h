#pragma once

#include "unit/client/tarnctl/update_run.h"
#include "unit/client/updating_service.h"

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace tarnClientTest {

// Updates of tarnctl against a service with an update in it.
class TarnctlUpdateTest : public ::testing::Test
{
protected:
    TarnctlUpdateTest()
    {
        service.beforeAnswer = [this](const QString &command) {
            if (command == interruptedAt)
                std::raise(SIGINT);
        };
    }

    ToolRun update(tarn::FirmwareKind kind, const QStringList &options = {}, bool errorsAreTerminal = false)
    {
        return update(tarn::updatePlan(kind), options, errorsAreTerminal);
    }

    ToolRun update(const tarn::UpdatePlan &plan, const QStringList &options, bool errorsAreTerminal = false)
    {
        return runUpdate(service.pipe, {plan, [this] { return otherUser; }, askingPause},
            file.isEmpty() ? folders.firmware() : file, folders.downloads(), options, errorsAreTerminal,
            times);
    }

    // An update whose every answer comes late enough for the device to have been touched.
    ToolRun updateMcuLate(const QStringList &options = {})
    {
        tarn::UpdatePlan plan = tarn::updatePlan(tarn::FirmwareKind::Mcu);
        std::vector<tarn::UpdateStep> steps(plan.steps.begin(), plan.steps.end());
        steps.back().untouchedBefore = std::chrono::milliseconds(0);
        plan.steps = steps;
        return update(plan, options);
    }

    QString interruptedAt {};
    // The file that is given to tarnctl; empty: the one outside the download folder.
    QString file {};
    std::optional<tarn::OtherUser> otherUser {};
    tarn::ClientTimes times {};
    std::chrono::milliseconds askingPause {500};

    FirmwareFolders folders;
    UpdatingService service {folders};
};

} // namespace tarnClientTest
