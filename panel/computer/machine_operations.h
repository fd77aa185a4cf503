#pragma once

#include <QObject>
#include <QStringList>

namespace tarnPanel {

class MachineWatch;
class Session;

// Carries out what is clicked as a command line of tarnsim, so the command that the session shows is
// literally what was done.
class MachineOperations : public QObject
{
    Q_OBJECT

public:
    // Later: one of many steps of the same movement; note() is called with the last one.
    enum class Noted { Now, Later };

    // Both outlive this.
    MachineOperations(MachineWatch &machineWatch, Session &session, QObject *parent = nullptr);

    // "set", "battery", "42". False after a complaint, which is then also sent.
    bool carryOut(const QStringList &words, Noted noted = Noted::Now);
    // Adds to the session what was carried out for later, `delayMs` after now.
    void note(const QStringList &words, int delayMs = 0);

    // Of the last command; empty when it was carried out.
    [[nodiscard]] QString complaint() const { return lastComplaint; }

Q_SIGNALS:
    // An empty one takes the last one back.
    void complained(const QString &complaint);

private:
    [[nodiscard]] QString run(const QStringList &words) const;

    MachineWatch &watch;
    Session &commands;
    QString lastComplaint;
};

} // namespace tarnPanel
