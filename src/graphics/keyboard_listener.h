#pragma once

#include <QObject>

namespace tarnAccessoryManager {

// Declares the signal of a GPU key on the keyboard. No object of it is created, because the key of the box
// reaches the service only as an event of the EC.
class KeyboardListener : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void graphicsDisengagedSignal();
};

} // namespace tarnAccessoryManager
