#pragma once

#include "panel/client/age.h"

#include <QWidget>

class QGridLayout;
class QPushButton;

namespace tarnPanel {

class ConfirmedSetting;
class QuestionQueue;
class ReachableLabel;
class ServiceLink;
class SettingRow;

// Profiles, charging and lights, as the service has confirmed them, and the GPU of the graphics box.
class SettingsPage : public QWidget
{
    Q_OBJECT

public:
    SettingsPage(ServiceLink &link, QuestionQueue &questions, QWidget *parent = nullptr);

    // Reads all that can be read now.
    void read();
    // The same for the user: what failed before is forgotten.
    void readAnew();
    // What depends on the accessory.
    void readOfAccessory();
    void refreshAges();

private:
    void addGpu(QGridLayout &grid);
    void disableGpu();
    void refreshGpu();
    void listen();
    [[nodiscard]] ConfirmedSetting &setting(QLatin1StringView name);

    ServiceLink &link;
    QList<ConfirmedSetting *> settings;
    QList<SettingRow *> rows;
    QPushButton *gpuButton;
    ReachableLabel *gpuStatus;
    QString gpuEvent;
    Age gpuAge;
    bool isGpuWaiting = false;
};

} // namespace tarnPanel
