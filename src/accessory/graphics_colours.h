#pragma once

#include <QtGlobal>

#include <iterator>

namespace tarnAccessoryManager {

// The colours of the graphics box's light, in the order of their numbers. The shades are the box's own: a
// colour is recognised only when all three bytes agree.
struct GraphicsColour
{
    const char *wireName;
    quint8 red;
    quint8 green;
    quint8 blue;
    const char *readText; // log text when the EC reports it
};

inline constexpr GraphicsColour graphicsColours[] = {
    {"white", 255, 255, 255, "Graphics RGB is white."},
    {"red", 230, 0, 18, "Graphics RGB is red."},
    {"yellow", 248, 182, 45, "Graphics RGB is yellow."},
    {"green", 143, 195, 31, "Graphics RGB is green."},
    {"cyan", 0, 255, 255, "Graphics RGB is cyan."},
    {"blue", 30, 149, 212, "Graphics RGB is blue."},
    {"purplishred", 255, 0, 255, "Graphics RGB is purplish red."},
    {"shutdown", 0, 0, 0, "Graphics RGB is close."},
};
inline constexpr int graphicsColourCount = static_cast<int>(std::size(graphicsColours));
inline constexpr int graphicsWhite = 0;
inline constexpr int graphicsOff = 7; // the only number that is never remembered

[[nodiscard]] constexpr bool isGraphicsColour(int number)
{
    return number >= 0 && number < graphicsColourCount;
}

} // namespace tarnAccessoryManager
