#include "panel/client/setting_control.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QTimer>
#include <QWheelEvent>

namespace tarnPanel {

namespace {

constexpr int brightest = 255;
// A slider is moved in many small steps; each request costs the service half a second.
constexpr std::chrono::milliseconds handIsStill {400};

// A wheel that scrolls the page must not send a request when the pointer comes over a control.
class SteadyBox : public QComboBox
{
protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};

class SteadySlider : public QSlider
{
public:
    SteadySlider()
        : QSlider(Qt::Horizontal)
    { }

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};

class ChoiceControl : public SettingControl
{
public:
    ChoiceControl(const SettingEntry &entry, QWidget *parent)
        : SettingControl(parent)
        , box(new SteadyBox)
    {
        for (const SettingWord &word : entry.words)
            box->addItem(word.label.toString(), word.word.toString());
        box->setPlaceholderText(QStringLiteral("unknown"));
        box->setCurrentIndex(-1);
        layout()->addWidget(box);
        connect(box, &QComboBox::activated, this, [this](int index) {
            const QString word = box->itemData(index).toString();
            box->setCurrentIndex(shown);
            Q_EMIT asked(word);
        });
    }

    void showWord(const std::optional<QString> &word) override
    {
        shown = word ? box->findData(*word) : -1;
        box->setCurrentIndex(shown);
    }
    QWidget *main() override { return box; }

private:
    SteadyBox *box;
    int shown = -1;
};

// Half checked where it is not known.
class SwitchBox : public QCheckBox
{
public:
    explicit SwitchBox(std::function<void(bool)> askFor)
        : ask(std::move(askFor))
    { }

protected:
    void nextCheckState() override { ask(checkState() != Qt::Checked); }

private:
    std::function<void(bool)> ask;
};

class SwitchControl : public SettingControl
{
public:
    SwitchControl(const SettingEntry &entry, QWidget *parent)
        : SettingControl(parent)
        , row(entry)
        , box(new SwitchBox([this](bool isOn) { Q_EMIT asked(row.words.at(isOn ? 0 : 1).word.toString()); }))
    {
        layout()->addWidget(box);
        SwitchControl::showWord({});
    }

    void showWord(const std::optional<QString> &word) override
    {
        const bool isOn = word && *word == row.words.first().word;
        const Qt::CheckState known = isOn ? Qt::Checked : Qt::Unchecked;
        box->setCheckState(word ? known : Qt::PartiallyChecked);
        box->setText(word ? shownWord(row, *word) : QStringLiteral("unknown"));
    }
    QWidget *main() override { return box; }

private:
    const SettingEntry &row;
    SwitchBox *box;
};

class LevelControl : public SettingControl
{
public:
    explicit LevelControl(QWidget *parent)
        : SettingControl(parent)
        , slider(new SteadySlider)
        , label(new QLabel)
    {
        slider->setRange(0, brightest);
        slider->setPageStep(16);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("unknown")));
        layout()->addWidget(slider);
        layout()->addWidget(label);
        still.setSingleShot(true);
        still.setInterval(handIsStill);
        connect(slider, &QSlider::valueChanged, this, &LevelControl::choose);
        // An unknown level is shown at 0: no change tells that 0 is wanted.
        connect(slider, &QSlider::actionTriggered, this, [this](int action) {
            if (action == QAbstractSlider::SliderToMinimum)
                choose(slider->minimum());
        });
        connect(slider, &QSlider::sliderReleased, this, [this] {
            if (isChosen)
                still.start();
        });
        connect(&still, &QTimer::timeout, this, &LevelControl::askForChosen);
        LevelControl::showWord({});
    }

    void showWord(const std::optional<QString> &word) override
    {
        confirmed = word ? word->toInt() : -1;
        // What the hand has just chosen is not taken from it.
        if (still.isActive() || slider->isSliderDown())
            return;
        const QSignalBlocker blocker(slider);
        slider->setValue(std::max(0, confirmed));
        label->setText(word ? *word : QStringLiteral("unknown"));
    }
    QWidget *main() override { return slider; }

private:
    void choose(int value)
    {
        isChosen = true;
        label->setText(QString::number(value));
        still.start();
    }

    void askForChosen()
    {
        if (slider->isSliderDown() || !std::exchange(isChosen, false))
            return;
        if (slider->value() != confirmed)
            Q_EMIT asked(QString::number(slider->value()));
    }

    SteadySlider *slider;
    QLabel *label;
    QTimer still;
    // By the user, who has not been heard yet.
    bool isChosen = false;
    int confirmed = -1;
};

} // namespace

SettingControl::SettingControl(QWidget *parent)
    : QWidget(parent)
{
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins({});
}

SettingControl *SettingControl::make(const SettingEntry &entry, QWidget *parent)
{
    switch (entry.control) {
    case ControlKind::Choice:
        return new ChoiceControl(entry, parent);
    case ControlKind::Switch:
        return new SwitchControl(entry, parent);
    case ControlKind::Level:
        return new LevelControl(parent);
    }
    return nullptr;
}

} // namespace tarnPanel
