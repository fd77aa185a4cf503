#include "platform/message_tap.h"

#include "support/printing.h"

#include <QDebug>
#include <QThread>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using tarnPlatform::MessageTap;

namespace {

// Where the messages go without a tap. Not the log of the other tests: these texts are none of the service's.
QStringList printed;
std::function<void(const QString &)> onPrint;

void print(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    printed << QString::number(type) + QLatin1Char(' ') + text;
    if (onPrint)
        onPrint(text);
}

class MessageTapTest : public ::testing::Test
{
protected:
    MessageTapTest() { before = qInstallMessageHandler(print); }
    ~MessageTapTest() override { qInstallMessageHandler(before); }

    [[nodiscard]] MessageTap::Listener noteIn(QStringList &list)
    {
        return [&list](QtMsgType type, const QString &text) {
            list << QString::number(type) + QLatin1Char(' ') + text;
        };
    }

    QtMessageHandler before;
    QStringList heard;
};

} // namespace

TEST_F(MessageTapTest, HearsEveryMessageThatStillGoesWhereItWent)
{
    {
        const MessageTap tap(noteIn(heard));
        qDebug() << "one" << 1;
        qWarning("two");
    }
    qDebug() << "three";
    EXPECT_EQ(heard, QStringList({"0 one 1", "1 two"}));
    EXPECT_EQ(printed, QStringList({"0 one 1", "1 two", "0 three"}));
}

TEST_F(MessageTapTest, HearsAMessageBeforeItGoesOn)
{
    QStringList order;
    onPrint = [&](const QString &text) {
        order << "went on: " + text;
    };
    const MessageTap tap([&](QtMsgType, const QString &text) { order << "heard: " + text; });
    qDebug() << "a";
    EXPECT_EQ(order, QStringList({"heard: a", "went on: a"}));
}

TEST_F(MessageTapTest, TwoHearTheSameUntilEachIsGone)
{
    QStringList others;
    const MessageTap first(noteIn(heard));
    {
        const MessageTap second(noteIn(others));
        qDebug() << "both";
    }
    qDebug() << "first";
    EXPECT_EQ(heard, QStringList({"0 both", "0 first"}));
    EXPECT_EQ(others, QStringList({"0 both"}));
    EXPECT_EQ(printed, QStringList({"0 both", "0 first"}));
}

TEST_F(MessageTapTest, DoesNotHearWhatItsFunctionLogs)
{
    const MessageTap tap([this](QtMsgType, const QString &text) {
        heard << text;
        qWarning("from the function");
    });
    qDebug() << "a";
    EXPECT_EQ(heard, QStringList("a"));
    EXPECT_EQ(printed, QStringList("0 a")); // the other went to stderr
}

TEST_F(MessageTapTest, HearsEachThreadOnItself)
{
    Qt::HANDLE heardOn = nullptr;
    const MessageTap tap([&](QtMsgType, const QString &) { heardOn = QThread::currentThreadId(); });
    Qt::HANDLE loggedOn = nullptr;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        loggedOn = QThread::currentThreadId();
        qDebug() << "a";
    }));
    thread->start();
    thread->wait();
    EXPECT_NE(heardOn, QThread::currentThreadId());
    EXPECT_EQ(heardOn, loggedOn);
}
