#pragma once

#include "panel/client/setting_table.h"

#include <QWidget>

namespace tarnPanel {

// What the user works a setting with. It shows what it is told; what the user wants, it only asks for.
class SettingControl : public QWidget
{
    Q_OBJECT

public:
    explicit SettingControl(QWidget *parent = nullptr);

    virtual void showWord(const std::optional<QString> &word) = 0;
    // The widget with the focus, which has the names for a screen reader.
    [[nodiscard]] virtual QWidget *main() = 0;

    [[nodiscard]] static SettingControl *make(const SettingEntry &entry, QWidget *parent);

Q_SIGNALS:
    void asked(const QString &word);
};

} // namespace tarnPanel
