#include "simulator/replay/replay_steps.h"

#include "simulator/desktop.h"
#include "simulator/value_text.h"

#include <fstream>
#include <limits>
#include <thread>

namespace tarnSimulator {

using namespace std::chrono_literals;
using tarnRecording::RequestRecord;

namespace {

constexpr auto openingPause = 5ms;
// A request that has been read then waits for the EC before the access that follows is made. Long enough for
// a busy computer; a handler that has waited for the EC for more than a second looks at the accessory once
// more.
constexpr auto timeToBegin = 400ms;

constexpr char separator = '\t';
constexpr std::size_t deviceFields = 8;
constexpr int digitsOfByte = 2; // hexadecimal
constexpr std::size_t hexPrefix = 2; // "0x"

std::vector<std::string_view> fieldsOf(std::string_view line)
{
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = line.find(separator);
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        line.remove_prefix(end + 1);
    }
}

bool fits(std::string_view text, std::size_t size)
{
    return text.size() < size;
}

} // namespace

std::filesystem::path replayStepsPath(const std::filesystem::path &stateFile)
{
    return std::filesystem::path(stateFile) += ".replay";
}

std::string deviceLine(const Device &device)
{
    std::string line = device.name;
    for (const std::uint32_t number : {static_cast<std::uint32_t>(device.kind),
             static_cast<std::uint32_t>(device.place), device.started ? 1U : 0U, device.problem})
        line += separator + std::to_string(number);
    for (const std::string *text : {&device.description, &device.hardwareId, &device.instanceId})
        line += separator + *text;
    return line;
}

std::optional<Device> deviceOfLine(std::string_view line)
{
    const std::vector<std::string_view> fields = fieldsOf(line);
    if (fields.size() != deviceFields)
        return std::nullopt;
    const auto kind = parseByte(fields[1]);
    const auto place = parseByte(fields[2]);
    const auto problem = parseNumber(fields[4]);
    const bool isGood = kind && *kind <= static_cast<std::uint8_t>(DeviceKind::Other) && place
        && *place <= static_cast<std::uint8_t>(DevicePlace::Nowhere) && problem && !fields[0].empty()
        && fits(fields[0], deviceNameSize) && fits(fields[5], deviceTextSize)
        && fits(fields[6], deviceTextSize) && fits(fields[7], deviceTextSize);
    if (!isGood)
        return std::nullopt;
    Device device;
    device.name = fields[0];
    device.kind = static_cast<DeviceKind>(*kind);
    device.place = static_cast<DevicePlace>(*place);
    device.started = fields[3] == "1";
    device.problem = static_cast<std::uint32_t>(*problem);
    device.description = fields[5];
    device.hardwareId = fields[6];
    device.instanceId = fields[7];
    return device;
}

std::string savedLine(std::string_view name, std::string_view content)
{
    std::string line(name);
    line += separator;
    for (const char byte : content)
        line += hexText(static_cast<std::uint8_t>(byte), digitsOfByte).substr(hexPrefix);
    return line;
}

ReplaySteps::ReplaySteps(
    MachineState &machine, const std::filesystem::path &stateFile, std::chrono::milliseconds openingLimit)
    : state(machine)
    , limit(openingLimit)
{
    const std::u8string path = replayStepsPath(stateFile).u8string();
    if (auto read = tarnRecording::readRequests(std::string(path.begin(), path.end()), problem))
        steps = std::move(*read);
}

bool ReplaySteps::doUntil(std::uint64_t accesses)
{
    if (!steps.empty())
        pipe.open();
    pipe.drain();
    for (;;) {
        const std::uint32_t next = state.replay.steps.load();
        if (next >= steps.size() || steps[next].after > accesses)
            return true;
        if (!perform(steps[next]))
            return false;
        state.replay.steps.store(next + 1);
    }
}

std::string ReplaySteps::failedStep() const
{
    std::string line = lineOf(steps.at(state.replay.steps.load()));
    line.pop_back(); // the line feed
    return line;
}

bool ReplaySteps::perform(const RequestRecord &step)
{
    switch (step.kind) {
    case RequestRecord::Kind::Device:
        return changeDevice(step.text);
    case RequestRecord::Kind::Saved:
        return restoreSaved(step.text);
    case RequestRecord::Kind::Answer:
        return changeAnswer(step.text);
    case RequestRecord::Kind::Request:
        return ask(step.text);
    }
    return false;
}

bool ReplaySteps::ask(const std::string &message)
{
    const auto latest = std::chrono::steady_clock::now() + limit;
    while (!pipe.write(message)) {
        if (std::chrono::steady_clock::now() > latest)
            return false;
        std::this_thread::sleep_for(openingPause);
    }
    std::this_thread::sleep_for(timeToBegin);
    return true;
}

// In the current folder, as the service has them.
bool ReplaySteps::restoreSaved(std::string_view line)
{
    const std::vector<std::string_view> fields = fieldsOf(line);
    if (fields.size() != 2)
        return false;
    const std::filesystem::path name(fields[0]);
    if (fields[1].empty()) {
        std::error_code ignored;
        std::filesystem::remove(name, ignored);
        return true;
    }
    std::ofstream file(name, std::ios::binary);
    for (std::size_t place = 0; place + 1 < fields[1].size(); place += digitsOfByte) {
        const auto byte = parseByte("0x" + std::string(fields[1].substr(place, digitsOfByte)));
        if (!byte)
            return false;
        file.put(static_cast<char>(*byte));
    }
    file.close();
    return file.good();
}

bool ReplaySteps::changeDevice(const std::string &line)
{
    const std::optional<Device> device = deviceOfLine(line);
    if (!device)
        return false;
    DeviceTree devices(state);
    if (const auto slot = devices.find(device->name)) {
        devices.store(*slot, *device);
        return true;
    }
    return devices.add(*device).has_value();
}

bool ReplaySteps::changeAnswer(const std::string &text)
{
    const auto code = parseNumber(text);
    if (!code || *code < std::numeric_limits<std::int32_t>::min()
        || *code > std::numeric_limits<std::int32_t>::max())
        return false;
    Desktop(state).setAnswer(static_cast<std::int32_t>(*code));
    return true;
}

} // namespace tarnSimulator
