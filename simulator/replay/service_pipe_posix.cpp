#include "simulator/replay/service_pipe.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace tarnSimulator {

namespace {

constexpr auto longestReading = std::chrono::seconds(10);

// Where a local server of Qt has its socket.
std::string socketPath()
{
    const char *folder = std::getenv("TMPDIR");
    std::string path = folder == nullptr || *folder == '\0' ? "/tmp" : folder;
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path + "/tarnPipe";
}

// 0 stands for none, so that a descriptor fits the handle.
int descriptorOf(void *handle)
{
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle)) - 1;
}

bool waitUntilRead(int descriptor)
{
    const auto latest = std::chrono::steady_clock::now() + longestReading;
    for (;;) {
        int unread = 0;
        if (::ioctl(descriptor, SIOCOUTQ, &unread) != 0)
            return false;
        if (unread == 0)
            return true;
        if (std::chrono::steady_clock::now() > latest)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace

bool ServicePipe::write(const std::string &message)
{
    open();
    if (handle == nullptr)
        return false;
    // Not waiting, because the thread that reads may wait for the one that writes; no signal when the service
    // has gone.
    const ssize_t sent =
        ::send(descriptorOf(handle), message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent == static_cast<ssize_t>(message.size()) && waitUntilRead(descriptorOf(handle)))
        return true;
    close();
    return false;
}

void ServicePipe::drain()
{
    std::array<char, 4096> bytes {};
    while (handle != nullptr && ::recv(descriptorOf(handle), bytes.data(), bytes.size(), MSG_DONTWAIT) > 0) {
    }
}

void ServicePipe::open()
{
    if (handle != nullptr)
        return;
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    const std::string path = socketPath();
    if (path.size() >= sizeof(address.sun_path))
        return;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return;
    if (::connect(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0) {
        ::close(descriptor);
        return;
    }
    handle = reinterpret_cast<void *>(static_cast<std::intptr_t>(descriptor) + 1);
}

void ServicePipe::close()
{
    if (handle != nullptr)
        ::close(descriptorOf(handle));
    handle = nullptr;
}

} // namespace tarnSimulator
