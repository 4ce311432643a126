// Signals by which a user or the system ends the program: Ctrl-C (SIGINT), SIGTERM, and SIGHUP of a terminal
// that is closed. As long as nothing was written they end it at once. From the first write on they wait: what
// was begun ends, and is shown, first. Either way the program says so, and ends by that signal. One that was
// ignored at the start stays ignored. On Windows the system ends the program by itself, at once.
#pragma once

#include <functional>
#include <string>

// What the program says last, made of a message and the exit status that a shell shows for the signal.
using LastWords = std::function<std::string(const std::string& message, int status)>;

// From here on these signals end the program with last words; call it once, before anything is written.
void ExpectInterruption(const LastWords& lastWords);

// Before the first write: from here on they wait.
void HoldInterruption();

// In a process that was split off: from here on they end it, at once and without words.
void ForgetInterruption();

// What the program says last of one that waited, unless that the change had ended.
void SayWhenInterrupted(const std::string& words);

struct Interrupted {};

// Between two steps of a command: throws Interrupted if a signal waits.
void StopIfInterrupted();

// At the end: ends the program with last words if a signal waits.
void EndIfInterrupted(const LastWords& lastWords);
