#include "device/recording/ec_recorder.h"
#include "figures.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <chrono>
#include <functional>

using namespace tarnBench;
using tarnRecording::EcRecorder;
using tarnRecording::RecordingFile;

namespace {

qint16 answer = 0;

void takeByte(quint16, qint16) { }

qint16 giveByte(quint16)
{
    return answer;
}

// Of one call, which is too short for a clock: of so many in a row.
Figures timesOf(int rounds, const std::function<void()> &access)
{
    constexpr int calls = 20;
    Figures us;
    for (int round = 0; round < rounds; ++round) {
        const auto begun = std::chrono::steady_clock::now();
        for (int call = 0; call < calls; ++call)
            access();
        const std::chrono::duration<double, std::micro> passed = std::chrono::steady_clock::now() - begun;
        us.add(passed.count() / calls);
    }
    return us;
}

} // namespace

// What the recorder adds to an access of a port.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const int rounds = QCoreApplication::arguments().contains(QStringLiteral("--quick")) ? 2000 : 50000;
    const QTemporaryDir folder;
    EcRecorder recorder(std::make_unique<RecordingFile>(folder.path()));
    EcRecorder::Out32 out = takeByte;
    EcRecorder::Inp32 inp = giveByte;
    const EcRecorder::Out32 plainOut = out;
    const EcRecorder::Inp32 plainInp = inp;
    recorder.tap(out, inp);

    printHeading("An access of a port while it is recorded; limit: 2 us more (median)");
    Table table({"access", "median us", "p99 us", "largest us", "accesses"});
    const auto measure = [&](const char *name, const std::function<void()> &access) {
        const Figures us = timesOf(rounds, access);
        table.add({name, fixed(us.median(), 3), fixed(us.quantile(0.99), 3), fixed(us.largest(), 1),
            QString::number(us.count())});
    };
    measure("read, not recorded", [&] { plainInp(0x6C); });
    measure("read that repeats", [&] { inp(0x6C); });
    measure("read of another value", [&] {
        answer = static_cast<qint16>(answer + 1);
        inp(0x6C);
    });
    measure("write, not recorded", [&] { plainOut(0x68, 4); });
    measure("write", [&] { out(0x68, 4); });
    table.print();
    return 0;
}
