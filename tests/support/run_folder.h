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
    // Both forward to the port backend of the test.
    enum class PortLibrary { Whole, WithoutInp32 };
    // Puts a port library into function/.
    void installPortLibrary(PortLibrary library = PortLibrary::Whole);
    void removePortLibrary();
    void write(const QString &name, const QByteArray &content) const;
    [[nodiscard]] QByteArray read(const QString &name) const;

private:
    QTemporaryDir folder;
    QString before;
    QByteArray temporaryBefore;
};

} // namespace tarnTest
