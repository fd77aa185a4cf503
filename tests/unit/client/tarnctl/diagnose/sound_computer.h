#pragma once

#include "client/tarnctl/diagnose/checks.h"

#include <QMap>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tarnClientTest {

// A computer on which nothing is wrong, until a test changes it.
class SoundComputer : public tarnctl::Computer
{
public:
    tarnctl::ServiceEntry service() override { return entry; }
    std::optional<QList<tarnctl::TimedProgram>> programsCalled(const QString &fileName) override
    {
        return areProcessesListed ? std::optional(programs.value(fileName)) : std::nullopt;
    }
    tarnctl::PipeState pipe(const QString &) override { return pipeState; }
    QString installedFolder() override { return installed; }
    QString fileVersion(const QString &) override { return version; }
    std::optional<qint64> freeBytes(const QString &) override { return room; }
    QStringList downloadFolders() override { return downloads; }
    QStringList versions() override { return {QStringLiteral("system: one of a test")}; }

    tarnctl::ServiceEntry entry;
    bool areProcessesListed = true;
    QMap<QString, QList<tarnctl::TimedProgram>> programs;
    tarnctl::PipeState pipeState {true, true};
    QString installed;
    QString version = QStringLiteral(TARN_VERSION);
    std::optional<qint64> room = qint64(10) << 30;
    QStringList downloads;
};

// An installation in a folder of its own, registered and running for an hour.
class Diagnosis : public ::testing::Test
{
protected:
    Diagnosis();

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    void write(const QString &name, const QByteArray &content) const;
    void remove(const QString &name) const;
    // Replaces the log by these lines, each given with its level and text, at the time of the service's
    // start.
    void log(const QStringList &levelsAndTexts) const;

    [[nodiscard]] tarnctl::Case examined();
    // The only line about the subject, as "good: text -> advice"; of several the first.
    [[nodiscard]] QString lineOf(const QString &subject);
    [[nodiscard]] QStringList linesOf(const QString &subject);

    QTemporaryDir folder;
    SoundComputer computer;
    const QDateTime now {QDate(2026, 11, 21), QTime(12, 0)};
    const QDateTime started {QDate(2026, 11, 21), QTime(11, 0)};
};

} // namespace tarnClientTest
