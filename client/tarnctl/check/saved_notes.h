#pragma once

#include "client/tarnctl/diagnose/installation.h"
#include "device/recording/request_record.h"

namespace tarnctl {

// Notes in the journal what the service has saved, because what it does with the EC depends on it. To be
// called before anything is asked: the service has saved nothing since its start, unless another client asked
// for it.
void noteSaved(const Installation &installation, tarnRecording::RequestJournal &journal);

} // namespace tarnctl
