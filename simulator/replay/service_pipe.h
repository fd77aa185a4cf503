#pragma once

#include <string>

namespace tarnSimulator {

// A client's end of the service's pipe, on which requests are written; what comes is not looked at. It
// connects when it has to, and keeps the connection.
class ServicePipe
{
public:
    ServicePipe() = default;
    ~ServicePipe() { close(); }
    ServicePipe(const ServicePipe &) = delete;
    ServicePipe &operator=(const ServicePipe &) = delete;

    // Writes, and waits until the service has read it. False when no service has the pipe open, or when it
    // takes nothing.
    [[nodiscard]] bool write(const std::string &message);
    // So that the service has no connection to set up when the first request comes; without success, if none
    // is open.
    void open();
    // Takes what has come, so that the service is never kept from writing. Does not wait.
    void drain();

private:
    void close();

    void *handle = nullptr; // of the system
};

} // namespace tarnSimulator
