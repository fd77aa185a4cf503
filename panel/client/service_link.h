#pragma once

#include "panel/client/message.h"

#include <tarn/client.h>

#include <QFutureWatcher>
#include <QPointer>

#include <functional>
#include <memory>

namespace tarnPanel {

class Session;

// The one connection of the panel to the service. What the user has sent becomes a command of the session,
// and all that passes is told to the log.
class ServiceLink : public QObject
{
    Q_OBJECT

public:
    template <typename R> using Use = std::function<void(const R &)>;

    // `session` outlives it.
    ServiceLink(const QString &pipeName, std::unique_ptr<tarn::Client> client, Session &session);
    ~ServiceLink() override;

    [[nodiscard]] tarn::Client &client() { return *tarnClient; }
    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] std::optional<tarn::Accessory> accessory() const { return tarnClient->accessory(); }

    // Sends what the user wants to be done. `use` gets the reply, unless `context` is gone by then. A null
    // `data`: none.
    void order(const QString &command, const QString &data, QObject *context, const Use<tarn::Reply> &use);
    // The same for what the panel asks by itself.
    void ask(const QString &command, const QString &data, QObject *context, const Use<tarn::Reply> &use);
    // Waits for an operation of the client.
    template <typename R>
    void follow(const QString &text, const QFuture<R> &future, QObject *context, const Use<R> &use);

    void addToSession(const QStringList &options, const QStringList &words);
    void note(tarnPanel::MessageKind kind, const QString &text);

    // Why other requests have to wait now; empty when they need not.
    [[nodiscard]] QString updateText() const { return runningUpdate; }
    void setUpdateText(const QString &text);

Q_SIGNALS:
    void noted(tarnPanel::MessageKind kind, const QString &text);
    // What is attached, as the client library keeps it; also when it was replaced by another of the same
    // kind.
    void accessoryChanged(std::optional<tarn::Accessory> accessory);
    // Connection, accessory or update: what can be sent now may be something else.
    void changed();

private:
    void noteEnd(const QString &text, const tarn::Reply &reply);
    void listen();

    QString pipe;
    Session &session;
    std::unique_ptr<tarn::Client> tarnClient;
    QString runningUpdate;
    bool isAccessoryTold = false; // of the notification that is being handled
};

template <typename R>
void ServiceLink::follow(const QString &text, const QFuture<R> &future, QObject *context, const Use<R> &use)
{
    // A child, and not a continuation: it ends with this link, whoever else is left.
    auto *watcher = new QFutureWatcher<R>(this);
    connect(watcher, &QFutureWatcherBase::finished, this,
        [this, watcher, text, guard = QPointer<QObject>(context), use] {
            watcher->deleteLater();
            const R reply = watcher->isCanceled() ? R() : watcher->result();
            noteEnd(text, reply);
            if (guard)
                use(reply);
        });
    watcher->setFuture(future);
}

} // namespace tarnPanel
