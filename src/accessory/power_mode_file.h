#pragma once

#include <QString>

namespace tarnAccessoryManager {

// The file that remembers the last applied profile: its number, one character. Not XML, despite its name.
class PowerModeFile
{
public:
    enum class Write { Done, NotCreated, NotWritten };
    enum class Read { Done, Absent, NotOpened, NotRead };

    [[nodiscard]] static Write write(int profile);
    // The content without white space at its ends.
    [[nodiscard]] static Read read(QString *content);
};

} // namespace tarnAccessoryManager
