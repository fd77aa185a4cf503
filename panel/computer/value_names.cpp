#include "panel/computer/value_names.h"

#include "simulator/register_table.h"
#include "simulator/tool/tool_text.h"
#include "simulator/value_text.h"

#include <QRegularExpression>

#include <algorithm>

namespace tarnPanel {

using namespace tarnSimulator;

namespace {

constexpr int percentMaximum = 100;
constexpr int byteMaximum = 255;

struct Level
{
    std::string_view name;
    int maximum;
};

constexpr Level levels[] = {
    {"battery", percentMaximum},
    {"kvane-battery", percentMaximum},
    {"kvane-led", byteMaximum},
};

struct NamedValue
{
    std::string_view name;
    const char *title;
};

// Those whose name alone would say too little.
constexpr NamedValue valueTitles[] = {
    {"gui-answer", "What the user answers"},
    {"kvane-led", "KVane light"},
    {"session", "Session of the service"},
};

struct ChoiceTitle
{
    const char *choice;
    const char *title;
};

constexpr ChoiceTitle choiceTitles[] = {
    {"wait", "wait for me"},
};

struct GroupTitle
{
    ValueGroup group;
    const char *title;
};

constexpr GroupTitle groupTitles[] = {
    {ValueGroup::HostBattery, "Battery of the computer"},
    {ValueGroup::Power, "Power"},
    {ValueGroup::Kvane, "KVane"},
    {ValueGroup::Desktop, "User and windows"},
    {ValueGroup::Lights, "Lights"},
    {ValueGroup::Limits, "Power limits"},
    {ValueGroup::Gpu, "GPU"},
    {ValueGroup::McuUpdate, "Firmware of the KVane"},
    {ValueGroup::Accessory, "Accessory as the EC reports it"},
    {ValueGroup::Timing, "Timing"},
    {ValueGroup::Other, "Other"},
};

struct Spelling
{
    const char *word;
    const char *spelt;
};

constexpr Spelling spellings[] = {{"kvane", "KVane"}, {"gpu", "GPU"}, {"mcu", "MCU"}, {"gui", "GUI"},
    {"eeprom", "EEPROM"}, {"ms", "(ms)"}, {"pl", "PL"}, {"pl1", "PL1"}, {"pl2", "PL2"}, {"pl4", "PL4"}};

QString spelt(const QString &word)
{
    const auto row = std::ranges::find_if(
        spellings, [&word](const Spelling &known) { return word == QLatin1String(known.word); });
    return row == std::end(spellings) ? word : QString::fromLatin1(row->spelt);
}

const Level *levelOf(const MachineValue &value)
{
    const auto *row = std::ranges::find(levels, value.name, &Level::name);
    return row == std::end(levels) ? nullptr : row;
}

} // namespace

ValueKind kindOf(const MachineValue &value)
{
    if (value.write == nullptr)
        return ValueKind::ReadOnly;
    if (levelOf(value) != nullptr)
        return ValueKind::Level;
    if (value.allowed.starts_with("on, off"))
        return ValueKind::Switch;
    return choicesOf(value).size() > 1 ? ValueKind::Choice : ValueKind::Text;
}

QString titleOf(const MachineValue &value)
{
    const auto *row = std::ranges::find(valueTitles, value.name, &NamedValue::name);
    if (row != std::end(valueTitles))
        return QString::fromLatin1(row->title);
    QStringList words;
    for (const QString &word : toQString(value.name).split(u'-'))
        words << spelt(word);
    words.first().replace(0, 1, words.first().at(0).toUpper());
    return words.join(u' ');
}

QString titleOf(ValueGroup group)
{
    const auto *row = std::ranges::find(groupTitles, group, &GroupTitle::group);
    return QString::fromLatin1(row->title);
}

QList<ValueGroup> groupsInOrder()
{
    QList<ValueGroup> groups;
    for (const GroupTitle &row : groupTitles)
        groups << row.group;
    return groups;
}

QStringList choicesOf(const MachineValue &value)
{
    static const QRegularExpression separator(QStringLiteral(", | or "));
    static const QRegularExpression plainWord(QStringLiteral("^[a-z]+$"));
    return toQString(value.allowed).split(separator).filter(plainWord);
}

QString choiceTitle(const QString &choice)
{
    const auto *row = std::ranges::find_if(
        choiceTitles, [&choice](const ChoiceTitle &known) { return choice == QLatin1String(known.choice); });
    return row == std::end(choiceTitles) ? choice : QString::fromLatin1(row->title);
}

int usualMaximum(const MachineValue &value)
{
    const Level *level = levelOf(value);
    return level == nullptr ? byteMaximum : level->maximum;
}

std::optional<bool> isOn(const MachineValue &value, const QString &text)
{
    if (text == QLatin1String("on") || text == QLatin1String("off"))
        return text == QLatin1String("on");
    const auto number = parseByte(text.toStdString());
    const auto registers = registerTable();
    const auto row = std::ranges::find_if(
        registers, [&value](const Register &known) { return known.value.name == value.name; });
    if (!number || row == registers.end())
        return std::nullopt;
    return (*number & row->value.onValue) != 0;
}

} // namespace tarnPanel
