#pragma once

#include <QAbstractButton>
#include <QGroupBox>

namespace tarnPanel {

class CarefulButton;
class ReachableLabel;
class ServiceLink;

// The parts of an update as single requests, for somebody who flashes with a tool of their own.
class ModeBox : public QGroupBox
{
    Q_OBJECT

public:
    struct Entry; // a button

    explicit ModeBox(ServiceLink &link, QWidget *parent = nullptr);

private:
    void add(const Entry &entry);
    void send(const Entry &entry);
    void refresh();
    [[nodiscard]] QString objectionOf(const QAbstractButton &button) const;
    [[nodiscard]] QString objections() const;

    ServiceLink &link;
    QList<QAbstractButton *> buttons;
    ReachableLabel *status;
    QString waitingFor;
    QString lastResult;
};

} // namespace tarnPanel
