#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace tarnClientTest {

// A user's folder with a firmware file, and a download folder beside it.
class FirmwareFolders
{
public:
    FirmwareFolders();

    [[nodiscard]] QString firmware() const;
    [[nodiscard]] QString downloads() const;
    // Where the file of this name lies for the service.
    [[nodiscard]] QString downloaded(const QString &name = QStringLiteral("fw.bin")) const;
    [[nodiscard]] QStringList downloadNames() const;

private:
    QTemporaryDir folder;
};

void writeFile(const QString &path, const QByteArray &content);
// Empty when there is none.
[[nodiscard]] QByteArray readFile(const QString &path);

} // namespace tarnClientTest
