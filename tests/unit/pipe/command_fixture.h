#pragma once

#include "../update/update_fixture.h"
#include "pipe/tarn_pipe_server.h"
#include "support/command_samples.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tarnTest {

// A KVane, tools that do nothing and a file for each of them: every command of the catalogue has what it
// needs.
class CommandTest : public UpdateTest
{
protected:
    CommandTest()
        : server(tarnPipeServer::TarnPipeServer::instance())
    {
        machine.folder.write("function/EC/uiset.ini", "BinName=old\n");
        installTool("function/EC/IFU_XE.exe", "exit 0");
        installFlasher("exit 0");
        download("new", sampleFirmware);
        forgetPast();
    }

    tarnPipeServer::TarnPipeServer *server;
};

// A request whose handler takes its longest path.
inline QByteArray fullRequest(const tarn::CommandEntry &command)
{
    return requestOf(command, goodData(command).first());
}

[[nodiscard]] inline std::vector<tarn::CommandEntry> commandsThatNeedTheEc(bool needed)
{
    std::vector<tarn::CommandEntry> commands;
    const auto &all = tarn::commandCatalogue();
    std::copy_if(all.begin(), all.end(), std::back_inserter(commands),
        [needed](const tarn::CommandEntry &command) { return command.needsEc == needed; });
    return commands;
}

inline std::string commandName(const ::testing::TestParamInfo<tarn::CommandEntry> &info)
{
    return info.param.name.toString().toStdString();
}

} // namespace tarnTest
