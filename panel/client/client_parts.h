#pragma once

#include "panel/client/update_run.h"

#include <tarn/client.h>

namespace tarnPanel {

// What this half works with.
struct ClientParts
{
    QString pipeName;
    std::unique_ptr<tarn::Client> client;
    UpdateMaker makeUpdate;
    // Empty: that of the user.
    QString downloadFolder;
};

} // namespace tarnPanel
