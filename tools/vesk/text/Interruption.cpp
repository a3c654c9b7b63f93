// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Interruption.h"

#include <array>
#include <csignal>
#include <ostream>
#include <poll.h>
#include <unistd.h>

namespace VeskTool {

static constexpr std::int64_t AGAIN_NANOSECONDS = 5'000'000'000;

static constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP, SIGPIPE};

// The last signal of either kind; 0 for none.
static volatile std::sig_atomic_t askedToStop = 0;
static volatile std::sig_atomic_t readerLost = 0;

static CarefulWork* carefulWork = nullptr; // the innermost

static void Note(int signal) {
    (signal == SIGPIPE || signal == SIGHUP ? readerLost : askedToStop) = signal;
}

static std::string NameOf(int signal) {
    switch (signal) {
    case SIGINT:
        return "SIGINT";
    case SIGTERM:
        return "SIGTERM";
    case SIGHUP:
        return "SIGHUP";
    default:
        return "SIGPIPE";
    }
}

Interrupted::Interrupted(int signal, const std::string& where)
    : _signal(signal), _what("stopped by " + NameOf(signal) + " " + where) {}

void WatchSignals() {
    askedToStop = 0;
    readerLost = 0;
    for (const int signal : SIGNALS) {
        struct sigaction action {};

        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = Note;
        sigaction(signal, &action, nullptr);
    }
}

void StopIfSignalled(const Whereabouts& where) {
    if (const int signal = askedToStop) {
        askedToStop = 0;
        if (!carefulWork)
            throw Interrupted(signal, where(signal));
        carefulWork->Decide(signal, where);
    }
    if (readerLost != 0 && !carefulWork)
        throw Interrupted(readerLost, where(readerLost));
}

/// They are let through in the wait alone, so that none comes right before it unseen.
void WaitForInput() {
    sigset_t watched;
    sigset_t before;
    sigemptyset(&watched);
    for (const int signal : SIGNALS)
        sigaddset(&watched, signal);
    sigprocmask(SIG_BLOCK, &watched, &before);
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (askedToStop == 0 && readerLost == 0)
        ppoll(&input, 1, nullptr, &before);
    sigprocmask(SIG_SETMASK, &before, nullptr);
}

bool NobodyReads() {
    return readerLost != 0;
}

CarefulWork::CarefulWork(const Console& console, std::function<std::string()> leftBehind)
    : _console(console), _leftBehind(std::move(leftBehind)), _outer(carefulWork) {
    _console.out.exceptions(std::ios::goodbit);
    carefulWork = this;
}

CarefulWork::~CarefulWork() {
    carefulWork = _outer;
}

void CarefulWork::Decide(int signal, const Whereabouts& where) {
    const std::string left = _leftBehind ? _leftBehind() : "";
    if (left.empty())
        throw Interrupted(signal, where(signal));
    const auto now = System::DateTime::Now();
    if (_asked && (now - *_asked).Nanoseconds() < AGAIN_NANOSECONDS)
        throw Interrupted(signal, left);
    _asked = now;
    _console.err << "vesk: stopping now would end it " << left
                 << "\n      It goes on; Ctrl-C again within 5 s stops it." << std::endl;
}

} // namespace VeskTool
