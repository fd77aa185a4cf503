#pragma once

#include <QObject>
#include <QPointer>

class QGridLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace tarnPanel {

class ConfirmedSetting;
class SettingControl;
class ToneLabel;

// The widgets of one setting in a grid: its name, its control, and beneath what is known about it.
class SettingRow : public QObject
{
    Q_OBJECT

public:
    // `grid` is the layout of `page`, the parent of this row.
    SettingRow(ConfirmedSetting &setting, QGridLayout &grid, QWidget &page);

    // The age goes on.
    void refresh();

private:
    void addOrders(QGridLayout &grid, int line);
    void setUsable(bool isUsable);

    ConfirmedSetting &setting;
    SettingControl *control;
    ToneLabel *status;
    QList<QPushButton *> orders;
    // The widget that lost the keyboard because it waits, and the one that got it instead.
    QPointer<QWidget> focusOwner;
    QPointer<QWidget> focusHeir;
};

} // namespace tarnPanel
