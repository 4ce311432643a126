#include <signal.h>
#include <unistd.h>

#include <array>
#include <iostream>
#include <optional>

#include "tools/kestova/process/interruption.h"

namespace {

constexpr std::array signals = {SIGHUP, SIGINT, SIGTERM};

// Of each of them, made in advance: a signal handler may not do that.
std::array<std::string, signals.size()> wordsAtOnce;

std::string wordsAtEnd = "interrupted, but not before the change had ended as shown above";

int StatusOf(int signal) {
    return 128 + signal;
}

// Calls only what a signal handler may call. The signal's own effect is back by now.
void EndAtOnce(int signal) {
    for (size_t i = 0; i < signals.size(); ++i) {
        if (signals[i] == signal && write(STDERR_FILENO, wordsAtOnce[i].data(), wordsAtOnce[i].size()) < 0)
            break;
    }
    raise(signal);
    _exit(StatusOf(signal));  // the first process of a container does not end by a signal
}

bool IsExpected(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == EndAtOnce;
}

// An ignored signal would wait, too, while it is blocked.
sigset_t Expected() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals) {
        if (IsExpected(signal)) sigaddset(&set, signal);
    }
    return set;
}

std::optional<int> Waiting() {
    const sigset_t expected = Expected();
    sigset_t pending;
    if (sigpending(&pending) != 0) return std::nullopt;
    for (const int signal : signals) {
        if (sigismember(&expected, signal) == 1 && sigismember(&pending, signal) == 1) return signal;
    }
    return std::nullopt;
}

}  // namespace

void ExpectInterruption(const LastWords& lastWords) {
    struct sigaction action = {};
    action.sa_handler = EndAtOnce;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    for (size_t i = 0; i < signals.size(); ++i) {
        struct sigaction before = {};
        wordsAtOnce[i] = lastWords("interrupted; nothing was changed", StatusOf(signals[i]));
        if (sigaction(signals[i], nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signals[i], &action, nullptr);
    }
}

void HoldInterruption() {
    const sigset_t expected = Expected();
    pthread_sigmask(SIG_BLOCK, &expected, nullptr);
}

void ForgetInterruption() {
    const sigset_t expected = Expected();
    for (const int number : signals) {
        if (sigismember(&expected, number) == 1) signal(number, SIG_DFL);
    }
    pthread_sigmask(SIG_UNBLOCK, &expected, nullptr);
}

void SayWhenInterrupted(const std::string& words) {
    wordsAtEnd = words;
}

void StopIfInterrupted() {
    if (Waiting()) throw Interrupted();
}

void EndIfInterrupted(const LastWords& lastWords) {
    const std::optional<int> waiting = Waiting();
    if (!waiting) return;
    std::cout.flush();
    std::cerr << lastWords(wordsAtEnd, StatusOf(*waiting));
    signal(*waiting, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, *waiting);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);  // it ends the program here
    _exit(StatusOf(*waiting));
}
