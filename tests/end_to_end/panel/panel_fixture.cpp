#include "end_to_end/panel/panel_fixture.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTabWidget>

namespace tarnTest {

using namespace tarnPanel;

void PanelFixture::open(bool startsService)
{
    const bool isReady = startsService || service.start();
    ASSERT_TRUE(isReady) << service.log().toStdString();
    settings = std::make_unique<QSettings>(service.path(QStringLiteral("panel.ini")), QSettings::IniFormat);
    const WindowOptions options {service.path(QStringLiteral("function/simulated_computer.state")),
        QStringLiteral("tarnPipe"), service.path(QString()), startsService};
    window = std::make_unique<MainWindow>(options, *settings);
    window->show();
    window->activateWindow();
}

void PanelFixture::close()
{
    const QSignalSpy ended(window.get(), &MainWindow::ended);
    window->close();
    EXPECT_TRUE(becomes([&ended] { return ended.count() > 0; }));
    window.reset();
}

bool PanelFixture::becomes(const std::function<bool()> &condition, int boundMs)
{
    return QTest::qWaitFor(condition, boundMs);
}

bool PanelFixture::becomesConnected()
{
    return becomes([this] { return !find(QStringLiteral("connect")).isEnabled(); });
}

QString PanelFixture::text(const QString &name) const
{
    const QWidget &widget = find(name);
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return label->text();
    return widget.property("text").toString();
}

void PanelFixture::bring(QWidget &widget) const
{
    for (QWidget *part = &widget; part != nullptr; part = part->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(part))
            area->ensureWidgetVisible(&widget);
        auto *tabs = qobject_cast<QTabWidget *>(part);
        for (int tab = 0; tabs != nullptr && tab < tabs->count(); ++tab) {
            if (tabs->widget(tab)->isAncestorOf(&widget))
                tabs->setCurrentIndex(tab);
        }
    }
    QApplication::processEvents();
    ASSERT_TRUE(widget.isVisible());
}

void PanelFixture::click(const QString &name) const
{
    QWidget &widget = find(name);
    bring(widget);
    ASSERT_TRUE(widget.isEnabled()) << name.toStdString();
    // A check box reacts to its box and its text, not to the room beside them.
    const bool isBox = qobject_cast<QCheckBox *>(&widget) != nullptr;
    QTest::mouseClick(&widget, Qt::LeftButton, {}, isBox ? QPoint(8, widget.height() / 2) : QPoint());
}

void PanelFixture::choose(const QString &name, Qt::Key key) const
{
    QWidget &widget = find(name);
    bring(widget);
    ASSERT_TRUE(widget.isEnabled()) << name.toStdString();
    widget.setFocus();
    QTest::keyClick(&widget, key);
}

} // namespace tarnTest
