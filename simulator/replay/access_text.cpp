#include "simulator/replay/access_text.h"

#include "simulator/register_table.h"
#include "simulator/value_text.h"

namespace tarnSimulator {

using tarnRecording::EcRecord;

std::string accessText(const EcRecord &access)
{
    const bool isRead = access.kind == EcRecord::Kind::In;
    return requestedText(access) + (isRead ? " that gave " + hexText(access.value & 0xFF, 2) : "");
}

std::string requestedText(const EcRecord &access)
{
    const std::string port = hexText(access.port, 2);
    switch (access.kind) {
    case EcRecord::Kind::Out:
        return "a write of " + hexText(access.value & 0xFF, 2) + " to port " + port;
    case EcRecord::Kind::In:
        return "a read of port " + port;
    case EcRecord::Kind::Load:
        return "a load of the port library";
    default:
        return "an unload of the port library";
    }
}

std::string registerAccessText(const DecodedAccess &access)
{
    const bool isRead = access.kind == DecodedAccess::Kind::Read;
    return std::string(isRead ? "read" : "write") + " of " + addressText(access.address) + " = "
        + hexText(access.value, 2);
}

} // namespace tarnSimulator
