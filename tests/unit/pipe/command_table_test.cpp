#include "pipe/command_table.h"

#include "client/command_catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(CommandTable, HoldsTheCommandsThatClientsKnow)
{
    QStringList known;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue())
        known << command.name;
    known.sort();
    EXPECT_EQ(tarnPipeServer::commandNames(), known);
    EXPECT_EQ(known.removeDuplicates(), 0);
}

TEST(CommandTable, ComparesNamesExactly)
{
    EXPECT_TRUE(tarnPipeServer::findCommand("getAccessoryType"));
    for (const char *name : {"", "getaccessorytype", "getAccessoryType ", "getAccessoryTyp"})
        EXPECT_FALSE(tarnPipeServer::findCommand(name)) << name;
}
