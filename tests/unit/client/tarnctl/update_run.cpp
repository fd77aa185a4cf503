#include "update_run.h"

#include <QDir>
#include <QFile>

#include <sstream>

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

ToolRun runUpdate(const FakeService &service, const tarnClient::UpdatePlan &plan, const QString &file,
    const tarnClient::DownloadPlace &place, const QStringList &options, bool errorsAreTerminal)
{
    const tarnClient::ParsedOptions parsed =
        tarnClient::parseOptions(QStringList {"tarnctl", "--pipe", service.pipeName()} + options);
    std::ostringstream output;
    std::ostringstream errors;
    tarnClient::ToolStreams streams {
        std::make_shared<std::istringstream>(), output, errors, false, errorsAreTerminal};
    ToolRun run;
    run.code = static_cast<int>(tarnClient::FirmwareUpdate(parsed.options, streams, plan, place).run(file));
    run.output = QByteArray::fromStdString(output.str());
    run.errors = QByteArray::fromStdString(errors.str());
    return run;
}

} // namespace tarnClientTest
