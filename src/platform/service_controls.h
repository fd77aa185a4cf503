#pragma once

#include <QtGlobal>

namespace tarnPlatform {

// What the system's service manager may ask of a running service, as it numbers it.
enum ServiceControl : quint32 {
    ControlStop = 1,
    ControlPause = 2,
    ControlContinue = 3,
    ControlInterrogate = 4,
    ControlShutdown = 5,
    FirstUserControl = 128,
    LastUserControl = 255,
};

// Which of them a service wants to be asked; interrogation and user commands always reach it.
enum AcceptedControl : quint32 {
    AcceptsNothing = 0x00,
    AcceptsStop = 0x01,
    AcceptsPauseAndContinue = 0x02,
    AcceptsShutdown = 0x04,
};

// User commands have numbers of their own, from 0 on.
constexpr int lastUserCommand = LastUserControl - FirstUserControl;

constexpr bool isUserCommand(int code)
{
    return code >= 0 && code <= lastUserCommand;
}

constexpr quint32 userControl(int command)
{
    return FirstUserControl + static_cast<quint32>(command);
}

} // namespace tarnPlatform
