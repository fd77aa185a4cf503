#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace tarnTest {

// A fresh folder that is the current one and holds the pipe's socket for as long as the object lives.
class RunFolder
{
public:
    RunFolder();
    ~RunFolder();

    [[nodiscard]] QString path(const QString &name) const { return folder.filePath(name); }
    // Puts a port library into function/; the default forwards to the port backend of the test.
    void installPortLibrary(const QString &library = QStringLiteral(TARN_TEST_PORT_LIBRARY));
    void removePortLibrary();
    void write(const QString &name, const QByteArray &content) const;
    [[nodiscard]] QByteArray read(const QString &name) const;

private:
    QTemporaryDir folder;
    QString before;
    QByteArray temporaryBefore;
};

} // namespace tarnTest
