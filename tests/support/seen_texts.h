#pragma once

#include <QString>

#include <string>
#include <vector>

namespace tarnTest {

// What the running test has seen of the service's texts. Where the variable TARN_SEEN_TEXTS names a folder it
// is written there, for the check that every text is seen by some test; elsewhere noting it costs nothing.
//
// The kinds are those of the catalogue of texts: debug, warning and fatal lines of the log, what is printed
// (out, err), exit (the first argument and the exit code), reply, notification, file, name, started, device,
// manager. Two more tell less: "said" is a line of a process whose kind does not show, "message" one that
// waits for a client.
void noteSeen(const char *kind, const QString &text);

// The same for each line.
void noteSeenLines(const char *kind, const QString &lines);

// Each line of a file, with the file's name in front.
void noteSeenFile(const QString &name, const QByteArray &content);

// What a program printed that was started with these words, and its exit code after the first argument.
void noteSeenRun(const std::vector<std::string> &words, int exitCode, const QString &out, const QString &err);

// Writes down what has been noted: at the end of each test, and before a message ends the process.
void writeSeenTexts();

} // namespace tarnTest
