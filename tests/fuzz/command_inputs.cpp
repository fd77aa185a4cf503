// Writes what random requests begin with, for every command of the client's catalogue: request.dict with the
// words, and the folder request with a seed for each of the samples. Argument: the folder for both.
#include "device/ec_registers.h"
#include "support/command_samples.h"

#include <QDir>
#include <QFile>

#include <utility>

namespace {

constexpr char noFault = '@'; // see request_fuzz.cpp

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

// In the fuzzer's own notation; a word comes with its quotes.
QByteArray entryOf(const QString &word)
{
    return "\"\\\"" + word.toUtf8() + "\\\"\"\n";
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        qFatal("command_inputs FOLDER");
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const QString seeds = folder + QStringLiteral("/request");
    QDir().mkpath(seeds);
    QStringList words;
    for (const tarn::CommandEntry &command : tarn::commandCatalogue()) {
        words << command.name;
        for (const QLatin1StringView key : command.answerKeys)
            words << key;
        const int accessory = tarnTest::accessoryFor(command).value_or(tarnDeviceInfos::ACCESSORY_DOCK);
        const QByteArray head = QByteArray::number(accessory) + noFault;
        int number = 0;
        for (const QString &data : tarnTest::goodData(command) + tarnTest::badData(command)) {
            if (!data.isNull())
                words << data;
            write(seeds + QLatin1Char('/') + command.name + QString::number(number++),
                head + tarnTest::requestOf(command, data));
        }
    }
    words.removeDuplicates();
    QByteArray dictionary;
    for (const QString &word : std::as_const(words))
        dictionary += entryOf(word);
    write(folder + QStringLiteral("/request.dict"), dictionary);
    return 0;
}
