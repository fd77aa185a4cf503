#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <istream>
#include <memory>
#include <optional>
#include <thread>

namespace tarnctl {

// Reads lines on a thread of its own: there is no portable way to wait for standard input and for a socket in
// one event loop.
class StdinReader : public QObject
{
    Q_OBJECT

public:
    explicit StdinReader(std::shared_ptr<std::istream> input, QObject *parent = nullptr);
    // Does not wait for a line: a thread that is still reading is detached.
    ~StdinReader() override;

    [[nodiscard]] std::optional<QString> takeLine();
    // What takeLine() would take.
    [[nodiscard]] std::optional<QString> nextLine() const;
    // The input has ended and every line has been taken.
    [[nodiscard]] bool isExhausted() const;
    // A thread still waits for input and cannot be stopped, so the process has to end without waiting for it.
    [[nodiscard]] static bool hasThreadLeftBehind();

signals:
    // Lines can be taken, or the input has ended.
    void changed();

private:
    struct Shared;

    void reportChange();

    std::shared_ptr<Shared> shared;
    std::thread thread;
    QTimer poll;
};

} // namespace tarnctl
