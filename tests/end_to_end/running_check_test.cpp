#include "end_to_end/service_process.h"
#include "support/seen_texts.h"

#include <QFile>

#include <gtest/gtest.h>

using tarnTest::ServiceProcess;

namespace {

// The service asks with one text, without arguments; on this system that is the name of a program.
const QString question = QStringLiteral("sc query \"TarnService\"");

// Lets the service get this answer.
void installAnswer(ServiceProcess &service, const QByteArray &answer)
{
    service.write(question, "#!/bin/sh\necho '" + answer + "'\n");
    ASSERT_TRUE(
        QFile(service.path(question)).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QProcessEnvironment environment = service.process.processEnvironment();
    environment.insert("PATH", service.path(".") + ':' + environment.value("PATH"));
    service.process.setProcessEnvironment(environment);
}

} // namespace

TEST(RunningCheck, TellsWhatTheSystemAnswers)
{
    const std::pair<const char *, const char *> answers[] = {
        {"SERVICE_NAME: TarnService  STATE : 4  RUNNING", R"(Service "\"TarnService\"" is running.)"},
        {"SERVICE_NAME: TarnService  STATE : 1  STOPPED", R"(Service "\"TarnService\"" is not running.)"},
        {"running", R"(Service "\"TarnService\"" is not running.)"},
    };
    std::vector<std::unique_ptr<ServiceProcess>> services;
    for (const auto &row : answers) {
        services.push_back(std::make_unique<ServiceProcess>());
        installAnswer(*services.back(), row.first);
        ASSERT_TRUE(services.back()->launch({"-version"}));
    }
    for (std::size_t i = 0; i < std::size(answers); ++i) {
        ASSERT_TRUE(services[i]->waitForEnd());
        EXPECT_TRUE(services[i]->logLines().contains(answers[i].second)) << services[i]->log().toStdString();
    }
    tarnTest::noteSeen("started", question);
    tarnTest::noteSeen("name", "RUNNING");
}
