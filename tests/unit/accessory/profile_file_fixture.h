#pragma once

#include "power_mode_fixture.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace tarnTest {

// What the file holds of these profiles.
inline constexpr const char *savedHigh = "0";
inline constexpr const char *savedBalance = "1";
inline constexpr const char *savedLow = "2";

// What the profile file can be instead of a file.
enum class InItsPlace { Nothing, Folder, FullDisk, ReadError };

// The power manager with its profile file and all that can be wrong with it.
class ProfileFileTest : public PowerModeTest
{
protected:
    void TearDown() override
    {
        PowerModeTest::TearDown();
        ::chmod(qPrintable(machine.folder.path(".")), 0755); // or the folder could not be removed
    }

    [[nodiscard]] QString profilePath() const { return machine.folder.path(profileFileName); }
    [[nodiscard]] bool profileFileExists() const { return QFileInfo(profilePath()).isFile(); }
    [[nodiscard]] QByteArray savedBytes() const { return machine.folder.read(profileFileName); }
    void save(const QByteArray &content) const { machine.folder.write(profileFileName, content); }

    void replaceProfileFile(InItsPlace what) const
    {
        QFile::remove(profilePath());
        QDir().rmdir(profilePath());
        if (what == InItsPlace::Folder)
            QDir().mkdir(profilePath());
        if (what == InItsPlace::FullDisk)
            QFile::link("/dev/full", profilePath());
        if (what == InItsPlace::ReadError)
            QFile::link("/proc/self/mem", profilePath()); // opens, and fails to read at its beginning
    }

    // While the profile's limits are being applied: later than a restore's reading, earlier than its writing.
    void replaceDuringApplication(InItsPlace what)
    {
        machine.clock.at(milliseconds(elapsed() + 100), [this, what] { replaceProfileFile(what); });
    }

    // The lines before and after those of the application of a profile that succeeded.
    [[nodiscard]] QStringList linesBeforeApplication() const
    {
        const QStringList lines = machine.log.lines();
        return lines.mid(0, indexOfFirst(lines, "set ec powermode to ", " begin."));
    }
    [[nodiscard]] QStringList linesAfterApplication() const
    {
        const QStringList lines = machine.log.lines();
        return lines.mid(indexOfFirst(lines, "set fan mode successed", "") + 1);
    }

private:
    static qsizetype indexOfFirst(const QStringList &lines, const QString &start, const QString &end)
    {
        const auto found = std::find_if(lines.cbegin(), lines.cend(),
            [&](const QString &line) { return line.startsWith(start) && line.endsWith(end); });
        return found - lines.cbegin();
    }
};

} // namespace tarnTest
