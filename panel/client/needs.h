#pragma once

#include <QString>

namespace tarnPanel {

class ServiceLink;

// What has to be there before something can be sent.
enum class Needs { Connection, Dock, GraphicsBox, KVane };

// Why it cannot be sent now, as a sentence; empty when it can.
[[nodiscard]] QString objectionTo(Needs needs, const ServiceLink &link);
// Whether that is attached, as far as is known.
[[nodiscard]] bool isAttached(Needs needs, const ServiceLink &link);

} // namespace tarnPanel
