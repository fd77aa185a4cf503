#pragma once

#include <QString>

// Every file and folder of an installation that the service uses. They are relative to the folder of the
// program, which main() makes the current one, and are logged as they are written here.
namespace tarnPlatform::path {

inline const QString portLibrary = QStringLiteral("./function/inpoutx64.dll");

// While this file is there when the service starts, what goes over the EC's ports is recorded into files
// beside it.
inline const QString recordingSwitch = QStringLiteral("./function/ec_recording.on");

// The external tools that flash, and the folders that they and their firmware lie in.
inline const QString mcuTool = QStringLiteral("./function/MCU/stm32flash.exe");
inline const QString mcuFolder = QStringLiteral("./function/MCU");
inline const QString ecTool = QStringLiteral("./function/EC/IFU_XE.exe");
inline const QString ecFolder = QStringLiteral("./function/EC");
inline const QString ecSettings = QStringLiteral("./function/EC/uiset.ini");

// Firmware is copied beside a tool's folder before it is moved into it, so that an interrupted copy never
// lies beside the tool.
inline const QString mcuFirmwarePart = QStringLiteral("./function/MCU.part");
inline const QString ecFirmwarePart = QStringLiteral("./function/EC.part");
// What the tools print. Not in their folders: there a client's firmware could have this name.
inline const QString toolOutputFolder = QStringLiteral("./function/");
// The EC tool's new settings while they are written.
inline const QString newEcSettings = QStringLiteral("temp.ini");

// What the service remembers. The profile file is not XML, despite its name.
inline const QString savedPowerProfile = QStringLiteral("./powermodeconfig.xml");
inline const QString savedGraphicsColour = QStringLiteral("./graphicsRGB_config.ini");

// What the service has logged.
inline const QString logFolder = QStringLiteral("./log");

// Appended to the folder of the program without a separator: Windows ignores the dot that the folder's name
// then ends in, so this is a folder beside the program. The log shows the path in this form.
inline const QString guiProgramSuffix = QStringLiteral("./TarnServiceGui/TarnServiceGui.exe");

} // namespace tarnPlatform::path
