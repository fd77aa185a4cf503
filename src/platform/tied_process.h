#pragma once

#include <QProcess>

#include <memory>

namespace tarnPlatform {

class ProcessTie;

// A program that ends with this process at the latest, however this one ends. It is started with startTied()
// and waited for on the same thread, which lives as long as the program: on Unix the program ends with that
// thread.
class TiedProcess : public QProcess
{
public:
    TiedProcess();
    ~TiedProcess() override;

    // True when the program runs.
    [[nodiscard]] bool startTied(const QString &program, const QStringList &arguments);

private:
    std::unique_ptr<ProcessTie> tie;
};

} // namespace tarnPlatform
