#pragma once

#include "end_to_end/service_process.h"
#include "panel/window/main_window.h"
#include "support/printing.h"

#include <QApplication>
#include <QSettings>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace tarnTest {

// The whole window beside a service on a simulated computer of its own.
class PanelFixture : public ::testing::Test
{
protected:
    // `startsService`: the window has to start it, else it runs before the window opens.
    void open(bool startsService = false);
    // Closes the window, and waits until what it has started has ended.
    void close();

    [[nodiscard]] static bool becomes(const std::function<bool()> &condition, int boundMs = 30000);
    [[nodiscard]] bool becomesConnected();

    // The widget of that name; the test fails where there is none.
    template <typename Widget = QWidget> [[nodiscard]] Widget &find(const QString &name) const
    {
        auto *found = window->findChild<Widget *>(name);
        if (found == nullptr)
            qFatal("there is no %s", qUtf8Printable(name));
        return *found;
    }
    [[nodiscard]] QString text(const QString &name) const; // of a label or a line
    // Brings the page of a tab widget with this widget on it to the front.
    void bring(QWidget &widget) const;
    void click(const QString &name) const;
    // By mouse or by key, as a user would.
    void choose(const QString &name, Qt::Key key) const;
    void attach(const QString &accessory) const { click(QStringLiteral("accessory-") + accessory); }
    [[nodiscard]] QString lastCommand() const { return text(QStringLiteral("lastCommand")); }
    [[nodiscard]] bool says(const QString &name, const QString &part) const
    {
        return text(name).contains(part);
    }

    tarnSimulator::ComputerControl &computer() { return service.computer(); }
    [[nodiscard]] int peek(std::uint16_t address) { return computer().peek(address); }

    ServiceProcess service;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<tarnPanel::MainWindow> window;
};

} // namespace tarnTest
