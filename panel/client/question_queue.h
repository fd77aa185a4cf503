#pragma once

#include <QList>
#include <QObject>

#include <functional>

namespace tarnPanel {

class ServiceLink;

// What the panel reads by itself, one question after the other, so that what the user sends waits behind one
// question at most. Asks nothing while there is no connection or an update runs.
class QuestionQueue : public QObject
{
    Q_OBJECT

public:
    // Sends the question and calls `done` when its reply has come.
    using Question = std::function<void(const std::function<void()> &done)>;

    explicit QuestionQueue(ServiceLink &link);

    // `command` is the request that it sends. One of the same command that has not been asked yet is not
    // asked twice.
    void add(const QString &command, const Question &question);

    // While it lives, what is added was wanted by the user, and becomes commands of the session.
    class ForUser
    {
    public:
        explicit ForUser(QuestionQueue &queue)
            : questions(queue)
        {
            questions.isForUser = true;
        }
        ~ForUser() { questions.isForUser = false; }
        Q_DISABLE_COPY_MOVE(ForUser)

    private:
        QuestionQueue &questions;
    };

private:
    void goOn();

    struct Entry
    {
        QString command;
        Question question;
        bool isForUser = false;
    };

    ServiceLink &link;
    QList<Entry> entries;
    bool isAsking = false;
    bool isForUser = false;
};

} // namespace tarnPanel
