#include "panel/client/settings_page.h"

#include "panel/client/confirmed_setting.h"
#include "panel/client/question_queue.h"
#include "panel/client/reachable_label.h"
#include "panel/client/service_link.h"
#include "panel/client/setting_row.h"

#include <QGridLayout>
#include <QPushButton>

#include <algorithm>

namespace tarnPanel {

namespace {

const QString gpuHint =
    QStringLiteral("Disables the GPU of the graphics box, as before an update of its MCU. Programs that use "
                   "it lose it. Whether it worked is only in the service's log.");

} // namespace

SettingsPage::SettingsPage(ServiceLink &serviceLink, QuestionQueue &questions, QWidget *parent)
    : QWidget(parent)
    , link(serviceLink)
    , gpuButton(new QPushButton(QStringLiteral("Disable GPU")))
    , gpuStatus(new ReachableLabel(QStringLiteral("gpuStatus"), QStringLiteral("GPU: state")))
{
    auto *grid = new QGridLayout(this);
    grid->setColumnStretch(2, 1);
    for (const SettingEntry &entry : settingTable()) {
        auto *one = new ConfirmedSetting(entry, link, questions, this);
        settings << one;
        rows << new SettingRow(*one, *grid, *this);
    }
    addGpu(*grid);
    grid->setRowStretch(grid->rowCount(), 1);
    listen();
}

void SettingsPage::addGpu(QGridLayout &grid)
{
    gpuButton->setObjectName(QStringLiteral("disableGpu"));
    const int line = grid.rowCount();
    auto *label = new QLabel(QStringLiteral("GPU"));
    label->setToolTip(gpuHint);
    grid.addWidget(label, line, 0);
    grid.addWidget(gpuButton, line, 1);
    grid.addWidget(gpuStatus, line + 1, 1, 1, 2);
    connect(gpuButton, &QPushButton::clicked, this, &SettingsPage::disableGpu);
    connect(&link, &ServiceLink::changed, this, &SettingsPage::refreshGpu);
    refreshGpu();
}

void SettingsPage::listen()
{
    using tarn::Client;
    connect(&link.client(), &Client::smartChargingRestored, this, [this](bool isOld) {
        // An old one may have been overtaken since.
        if (isOld)
            setting(QLatin1StringView("smartCharging")).read();
        else
            setting(QLatin1StringView("smartCharging")).take(QStringLiteral("ON"));
    });
    connect(&link.client(), &Client::kvaneLightChanged, this, [this](std::optional<int> light) {
        if (light)
            setting(QLatin1StringView("kvaneLight")).take(QString::number(*light));
    });
    connect(&link.client(), &Client::graphicsDisengaged, this, [this](bool isOld) {
        gpuEvent = isOld ? QStringLiteral("The service announced at some time before that it disables it")
                         : QStringLiteral("The service announced that it disables it");
        gpuAge.begin();
        refreshGpu();
    });
}

void SettingsPage::disableGpu()
{
    isGpuWaiting = true;
    refreshGpu();
    link.order(QStringLiteral("requestBeginGraphicsMcuUpdate"), {}, this, [this](const tarn::Reply &reply) {
        isGpuWaiting = false;
        gpuEvent = reply.isAnswered()
            ? QStringLiteral("Whether it worked is only in the service's log; it answered")
            : QStringLiteral("Not confirmed: ") + reply.reason();
        gpuAge.begin();
        refreshGpu();
    });
}

void SettingsPage::refreshGpu()
{
    const QString objection =
        isGpuWaiting ? QStringLiteral("Disabling the GPU…") : objectionTo(Needs::GraphicsBox, link);
    const QString event = gpuEvent.isEmpty() ? QString() : gpuEvent + u' ' + gpuAge.text() + u'.';
    const QString lastingEvent = gpuEvent.isEmpty() ? QString() : gpuEvent + u'.';
    const QString text = (objection + u' ' + event).trimmed();
    gpuStatus->say(text.isEmpty() ? gpuHint : text, isGpuWaiting ? Tone::Waiting : Tone::Quiet,
        text.isEmpty() ? gpuHint : (objection + u' ' + lastingEvent).trimmed());
    gpuButton->setEnabled(objection.isEmpty());
    gpuButton->setToolTip((objection + u'\n' + gpuHint).trimmed());
    const QString description = (objection + u' ' + gpuHint).trimmed();
    if (gpuButton->accessibleDescription() != description)
        gpuButton->setAccessibleDescription(description);
}

void SettingsPage::read()
{
    for (ConfirmedSetting *one : std::as_const(settings))
        one->read();
}

void SettingsPage::readAnew()
{
    for (ConfirmedSetting *one : std::as_const(settings))
        one->readAnew();
}

void SettingsPage::readOfAccessory()
{
    for (ConfirmedSetting *one : std::as_const(settings)) {
        if (one->entry().needs != Needs::Connection)
            one->read();
    }
}

void SettingsPage::refreshAges()
{
    for (SettingRow *row : std::as_const(rows))
        row->refresh();
    refreshGpu();
}

ConfirmedSetting &SettingsPage::setting(QLatin1StringView name)
{
    return **std::ranges::find_if(
        settings, [name](const ConfirmedSetting *one) { return one->entry().name == name; });
}

} // namespace tarnPanel
