#include "accessory/graphics_colours.h"
#include "accessory/mailbox.h"
#include "device/ec_access_lock.h"
#include "device/ec_dirver_controller_hal.h"
#include "device/ec_registers.h"
#include "graphics/graphics_accessory_manager.h"
#include "platform/paths.h"
#include "platform/waits.h"

#include <QDebug>
#include <QFile>
#include <QSettings>

#include <optional>

namespace tarnAccessoryManager {
namespace {

using namespace std::chrono_literals;
using namespace tarnDeviceInfos;
using tarnPlatform::sleepFor;

using tarnPlatform::path::savedGraphicsColour;

const QString colourKey = QStringLiteral("graphicsColor");

constexpr MailboxPoll lightsPoll = {
    50ms,
    10,
    "read ecRGBCmdData from xdata successed with: ",
    "read ecRGBCmdData from xdata failed.",
    "read ecRGBCmdData from xdata until it is 0.",
};

// A colour byte of the EC's answer, the pause before it is read, and its log texts.
struct ColourByte
{
    quint16 address;
    std::chrono::milliseconds pauseBefore;
    const char *done;
    const char *failed;
};
constexpr ColourByte colourBytes[] = {
    {XEC_RGB_RED, 10ms, "read rgbRedVer from xdata successed with: ", "read rgbRedVer from xdata failed."},
    {XEC_RGB_GREEN, 30ms,
        "read rgbGreenVer from xdata successed with: ", "read rgbGreenVer from xdata failed."},
    {XEC_RGB_BLUE, 10ms, "read rgbBlueVer from xdata successed with: ", "read rgbBlueVer from xdata failed."},
};

bool readColour(quint8 (&colour)[3])
{
    for (std::size_t i = 0; i < std::size(colourBytes); ++i) {
        sleepFor(colourBytes[i].pauseBefore);
        if (EcDirverControllerHal::instance()->readXdata(colourBytes[i].address, &colour[i]) != 0) {
            qWarning() << colourBytes[i].failed;
            return false;
        }
        qDebug() << colourBytes[i].done << colour[i];
    }
    return true;
}

// The number of a triple; empty when it is none of the box's colours.
std::optional<int> numberOf(const quint8 (&colour)[3])
{
    for (int number = 0; number < graphicsColourCount; ++number) {
        const GraphicsColour &row = graphicsColours[number];
        if (row.red == colour[0] && row.green == colour[1] && row.blue == colour[2])
            return number;
    }
    return std::nullopt;
}

// Empty when no colour is saved that the box can show.
std::optional<int> savedColour(const QSettings &settings)
{
    bool isNumber = false;
    const int colour = settings.value(colourKey).toInt(&isNumber);
    if (!isNumber || !isGraphicsColour(colour) || colour == graphicsOff)
        return std::nullopt;
    return colour;
}

// Whether the file itself holds the colour, in the form in which QSettings writes it. QSettings cannot tell:
// it answers from its cache, where a colour stays that could not be written, and keeps reporting an error for
// a file that it has just repaired.
bool isInFile(int colour)
{
    QFile file(savedGraphicsColour);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray wanted = colourKey.toLatin1() + '=' + QByteArray::number(colour);
    bool inGeneralSection = true; // lines before the first section belong to it
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('['))
            inGeneralSection = line == "[General]";
        else if (inGeneralSection && line == wanted)
            return true;
    }
    return false;
}

} // namespace

int GraphicsAccessoryManager::getGraphicsRgb()
{
    const EcAccess access;
    qDebug() << "start to get graphics rgb setting.";
    if (!access)
        return -1;
    if (!writeMailbox(
            {XEC_RGB_CMD, APP_EC_RGB_READ, "APP_EC_RGB_READ", "to XEC_RGB_CMD.", "to XEC_RGB_CMD. "}))
        return -1;
    sleepFor(mailboxPause);
    awaitMailbox(lightsPoll);

    quint8 colour[3] = {};
    if (!readColour(colour))
        return -2;
    const std::optional<int> number = numberOf(colour);
    if (!number) {
        qDebug() << "ec operation successed but get graphics rgb failed with wrong rgbver or rgb is down.";
        return graphicsOff;
    }
    qDebug() << graphicsColours[*number].readText;
    if (*number != graphicsOff)
        saveGraphicsColor(*number);
    return *number;
}

int GraphicsAccessoryManager::setGraphicsRgb(int colour)
{
    const EcAccess access;
    qDebug() << "begin to set graphics rgb.";
    if (!isGraphicsColour(colour)) {
        qDebug() << "Set graphics rgb with wrong color!";
        return -1;
    }
    if (!access)
        return -2;
    const GraphicsColour &row = graphicsColours[colour];
    const MailboxWrite colourWrites[] = {
        {XEC_RGB_RED, row.red, "rgbColorRed", "to XEC_RGB_RED.", "to XEC_RGB_RED. "},
        {XEC_RGB_GREEN, row.green, "rgbColorGreen", "to XEC_RGB_GREEN.", "to XEC_RGB_GREEN. "},
        {XEC_RGB_BLUE, row.blue, "rgbColorBlue", "to XEC_RGB_BLUE.", "to XEC_RGB_BLUE. "},
    };
    if (!writeMailboxColour(colourWrites,
            {XEC_RGB_CMD, APP_EC_RGB_WRITE, "APP_EC_RGB_WRITE", "to XEC_RGB_CMD.", "to XEC_RGB_CMD. "}))
        return -2;
    qDebug() << "Set graphics rgb color successed：" << colour;
    if (colour != graphicsOff)
        saveGraphicsColor(colour);
    return 0;
}

int GraphicsAccessoryManager::readGraphicsColor()
{
    return savedColour(QSettings(savedGraphicsColour, QSettings::IniFormat)).value_or(graphicsWhite);
}

void GraphicsAccessoryManager::saveGraphicsColor(int colour)
{
    QSettings settings(savedGraphicsColour, QSettings::IniFormat);
    // Saving waits for the disk while the caller holds the EC, so only a change is saved.
    if (savedColour(settings) == colour && isInFile(colour))
        return;
    settings.setValue(colourKey, colour);
    settings.sync();
    if (!isInFile(colour))
        qWarning() << "The colour of the graphics box cannot be remembered in" << settings.fileName();
}

} // namespace tarnAccessoryManager
