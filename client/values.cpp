#include "tarn/values.h"

#include "value_words.h"

#include <algorithm>
#include <iterator>

namespace tarn {

namespace {

template <typename T> struct Word
{
    T value;
    QLatin1StringView name;
};

constexpr Word<Accessory> accessoryWords[] = {
    {Accessory::Disconnected, QLatin1StringView("disconnected")},
    {Accessory::Dock, QLatin1StringView("dock")},
    {Accessory::GraphicsBox, QLatin1StringView("graphics")},
    {Accessory::KVane, QLatin1StringView("k_vane")},
    // What the service says of a code that it does not know.
    {Accessory::Unknown, QLatin1StringView("")},
};

constexpr Word<Profile> profileWords[] = {
    {Profile::High, QLatin1StringView("high")},
    {Profile::Balance, QLatin1StringView("balance")},
    {Profile::Low, QLatin1StringView("low")},
};

constexpr Word<Colour> colourWords[] = {
    {Colour::White, QLatin1StringView("white")},
    {Colour::Red, QLatin1StringView("red")},
    {Colour::Yellow, QLatin1StringView("yellow")},
    {Colour::Green, QLatin1StringView("green")},
    {Colour::Cyan, QLatin1StringView("cyan")},
    {Colour::Blue, QLatin1StringView("blue")},
    {Colour::PurplishRed, QLatin1StringView("purplishred")},
    {Colour::Shutdown, QLatin1StringView("shutdown")},
};

template <typename T, std::size_t size> QString nameIn(const Word<T> (&words)[size], T value)
{
    const auto *const found = std::find_if(
        std::begin(words), std::end(words), [value](const Word<T> &word) { return word.value == value; });
    return found == std::end(words) ? QString() : found->name.toString();
}

template <typename T, std::size_t size>
std::optional<T> valueIn(const Word<T> (&words)[size], const QString &name)
{
    const auto *const found = std::find_if(
        std::begin(words), std::end(words), [&name](const Word<T> &word) { return word.name == name; });
    return found == std::end(words) ? std::nullopt : std::optional(found->value);
}

template <typename T, std::size_t size> QList<QLatin1StringView> namesIn(const Word<T> (&words)[size])
{
    QList<QLatin1StringView> found;
    for (const Word<T> &word : words)
        found << word.name;
    return found;
}

} // namespace

QString nameOf(Accessory accessory)
{
    return nameIn(accessoryWords, accessory);
}

QString nameOf(Profile profile)
{
    return nameIn(profileWords, profile);
}

QString nameOf(Colour colour)
{
    return nameIn(colourWords, colour);
}

std::optional<Accessory> accessoryNamed(const QString &name)
{
    return valueIn(accessoryWords, name);
}

std::optional<Profile> profileNamed(const QString &name)
{
    return valueIn(profileWords, name);
}

std::optional<Colour> colourNamed(const QString &name)
{
    return valueIn(colourWords, name);
}

QList<QLatin1StringView> profileNames()
{
    return namesIn(profileWords);
}

QList<QLatin1StringView> colourNames()
{
    return namesIn(colourWords);
}

} // namespace tarn
