#pragma once

class QProcess;

namespace tarnPlatform {

// Makes a process that is going to be started one that lives apart from this one: it has no part in this
// process's console or terminal and is in a session or group of its own, so that neither a Ctrl+C nor the end
// of the console reaches it. What connects its standard streams with this process is up to the caller.
void setApart(QProcess &process);

} // namespace tarnPlatform
