#include <QCoreApplication>
#include <QLocalServer>

// What the service is measured against: a Qt local server that does nothing.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLocalServer server;
    return server.listen(QStringLiteral("bareServer")) ? QCoreApplication::exec() : 1;
}
