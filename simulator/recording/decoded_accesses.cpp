#include "simulator/recording/decoded_accesses.h"

namespace tarnSimulator {

std::vector<DecodedAccess> decodedAccesses(const tarnRecording::Recording &recording)
{
    ChannelDecoder decoder(recording.header.firstAccess);
    for (const tarnRecording::EcRecord &record : recording.records)
        decoder.take(record);
    decoder.finish();
    return decoder.accesses();
}

} // namespace tarnSimulator
