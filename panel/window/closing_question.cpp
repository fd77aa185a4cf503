#include "panel/window/closing_question.h"

#include <QPushButton>

namespace tarnPanel {

ClosingQuestion::ClosingQuestion(QWidget *parent)
    : QMessageBox(Warning, QStringLiteral("An update runs"),
        QStringLiteral("A firmware update has not ended."), NoButton, parent)
{
    setObjectName(QStringLiteral("closingQuestion"));
    setAttribute(Qt::WA_DeleteOnClose);
    setInformativeText(QStringLiteral(
        "What was started for this window ends with it, the serial port of the KVane too: flashing would "
        "break "
        "off. A service that ran before carries the update on, but its result is not shown here."));
    QPushButton *keeping = addButton(QStringLiteral("&Keep open"), RejectRole);
    QPushButton *afterwards = addButton(QStringLiteral("Close when it has &ended"), AcceptRole);
    QPushButton *closing = addButton(QStringLiteral("Close &now"), DestructiveRole);
    keeping->setObjectName(QStringLiteral("keepOpen"));
    afterwards->setObjectName(QStringLiteral("closeAfterwards"));
    closing->setObjectName(QStringLiteral("closeNow"));
    setDefaultButton(afterwards);
    setEscapeButton(keeping);
    connect(keeping, &QPushButton::clicked, this, &ClosingQuestion::keepOpenChosen);
    connect(afterwards, &QPushButton::clicked, this, &ClosingQuestion::closeAfterwardsChosen);
    connect(closing, &QPushButton::clicked, this, &ClosingQuestion::closeNowChosen);
}

} // namespace tarnPanel
