#include "client/pipe_address.h"
#include "client/tarnctl/connect_failure.h"

#include <gtest/gtest.h>

using Problem = tarn::Client::Problem;

namespace {

std::string textOf(Problem problem)
{
    return tarnctl::connectFailureText("somePipe", problem, "The wire is cut").toStdString();
}

} // namespace

TEST(TarnctlConnectFailureTest, AUserWithoutAccessIsNotToldToStartTheService)
{
    EXPECT_EQ(textOf(Problem::AccessDenied),
        "The pipe \"somePipe\" refuses this user.\n"
        "Run tarnctl as the user who started the service, or as administrator.");
}

TEST(TarnctlConnectFailureTest, AnythingUnusualIsToldInTheSystemsWords)
{
    const std::string path = tarn::pipeAddress("somePipe").text.toStdString();
    EXPECT_TRUE(
        textOf(Problem::NoService)
            .starts_with("No service answers on the pipe \"somePipe\" (" + path + ").\nStart it first: "));
    EXPECT_TRUE(textOf(Problem::SystemError)
                    .starts_with("No service answers on the pipe \"somePipe\" (" + path
                        + "): The wire is cut.\nStart it first: "));
}
