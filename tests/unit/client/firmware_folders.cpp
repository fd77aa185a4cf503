#include "unit/client/firmware_folders.h"

#include <QDir>
#include <QFile>

namespace tarnClientTest {

FirmwareFolders::FirmwareFolders()
{
    writeFile(firmware(), "new firmware");
    if (!QDir().mkpath(downloads()))
        qFatal("The test's download folder cannot be made.");
}

QString FirmwareFolders::firmware() const
{
    return folder.filePath(QStringLiteral("fw.bin"));
}

QString FirmwareFolders::downloads() const
{
    return folder.filePath(QStringLiteral("Downloads"));
}

QString FirmwareFolders::downloaded(const QString &name) const
{
    return downloads() + u'/' + name;
}

QStringList FirmwareFolders::downloadNames() const
{
    return QDir(downloads()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("The test's file cannot be written.");
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tarnClientTest
