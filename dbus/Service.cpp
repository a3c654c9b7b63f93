// SPDX-License-Identifier: MIT
#include "dbus/Service.h"

#include "dbus/Connect.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Vesk::DBus {

static constexpr const char* ROOT = "/org/libvesk"; // where the ObjectManager is
static constexpr int TICK_MILLISECONDS = 50;        // between two looks at the facts
static constexpr auto RETRY = std::chrono::seconds(1);
static constexpr int MESSAGES_AT_ONCE = 64; // before the next look at the cycles

Waker::Waker() : _descriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

Waker::~Waker() {
    ::close(_descriptor);
}

void Waker::Wake() const {
    const std::uint64_t one = 1; // fails only where it is awake a great many times already
    static_cast<void>(!::write(_descriptor, &one, sizeof one));
}

void Waker::Clear() const {
    std::uint64_t times = 0;
    static_cast<void>(!::read(_descriptor, &times, sizeof times));
}

Service::Service(std::string name, std::string bus, std::shared_ptr<Waker> waker)
    : _name(std::move(name)),
      _bus(std::move(bus)),
      _waker(std::move(waker)),
      _trouble("not yet connected"),
      _thread([this] { Run(); }) {}

Service::~Service() {
    _ends = true;
    _waker->Wake();
    _thread.join();
}

void Service::Add(std::shared_ptr<Published> module) {
    {
        const std::lock_guard lock(_mutex);
        _modules.push_back(std::move(module));
    }
    _waker->Wake();
}

bool Service::Has(const std::string& path) const {
    const std::lock_guard lock(_mutex);
    return std::ranges::any_of(
        _modules, [&](const auto& module) { return module->Path() == path && !module->IsClosed(); });
}

std::string Service::Trouble() const {
    const std::lock_guard lock(_mutex);
    return _trouble;
}

// ---- the thread

/// A cycle that publishes its module may run in real time already; the bus has to wait until it sleeps.
static void LeaveRealTime() {
    const sched_param none{};
    sched_setscheduler(0, SCHED_OTHER, &none); // of this thread; never refused to one that has more
}

void Service::Run() {
    LeaveRealTime();
    while (!_ends) {
        try {
            Connect();
            Serve();
        } catch (const std::exception& failure) {
            const std::lock_guard lock(_mutex);
            _trouble = failure.what();
        }
        Disconnect();
        WaitForBus();
    }
    for (Member& member : _members)
        member.module->End("the application has ended");
}

void Service::Connect() {
    _connection = DBus::Connect(_bus);
    _connection->addObjectManager(ROOT, sdbus::floating_slot);
    _connection->addMatch(
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg2=''",
        [this](sdbus::Message& message) {
            std::string name;
            message >> name;
            for (Member& member : _members)
                member.module->Leave(name);
        },
        sdbus::floating_slot);
    Admit();
    _connection->requestName(_name);
    const std::lock_guard lock(_mutex);
    _trouble.clear();
    _onBus = true;
}

void Service::Disconnect() {
    _onBus = false;
    for (Member& member : _members) {
        member.module->LeaveAll();
        member.control = nullptr;
        member.master = nullptr;
    }
    _connection = nullptr;
}

void Service::Serve() {
    while (!_ends) {
        Admit();
        Advance(); // so that nobody is told what was true before the call
        Process();
        Advance();
        const auto poll = _connection->getEventLoopPollData();
        const int wanted = poll.getPollTimeout();
        const int timeout = Timeout();
        Wait(poll.fd, poll.events, wanted < 0 ? timeout : std::min(wanted, timeout));
    }
    for (Member& member : _members) {
        member.module->Close();
        member.module->End("the application has ended");
    }
    Process();
}

/// Takes in the modules that are new, with their objects, and lets those go that are closed.
void Service::Admit() {
    std::vector<std::shared_ptr<Published>> modules;
    {
        const std::lock_guard lock(_mutex);
        std::erase_if(_modules, [](const auto& module) { return module->IsClosed(); });
        modules = _modules;
    }
    std::erase_if(_members, [](Member& member) {
        const bool closed = member.module->IsClosed();
        if (closed)
            member.module->End("the application has ended");
        return closed;
    });
    for (const auto& module : modules)
        if (std::ranges::find(_members, module, &Member::module) == _members.end())
            _members.push_back({module, nullptr, nullptr});
    if (!_connection)
        return;
    for (Member& member : _members) {
        if (!member.master)
            member.master = std::make_unique<MasterObject>(*_connection, *member.module);
        if (!member.control && member.module->LetsControl())
            member.control = std::make_unique<ControlObject>(*_connection, *member.module);
    }
}

void Service::Process() {
    for (int messages = 0; messages < MESSAGES_AT_ONCE && _connection->processPendingRequest();)
        ++messages;
}

/// Lets the requests go on, and tells the bus what is new.
void Service::Advance() {
    for (Member& member : _members) {
        member.module->Advance();
        Facts before;
        if (member.module->Refresh(before) && member.master)
            member.master->TellChanges(before);
        if (member.control)
            member.control->TellChanges();
    }
}

/// Milliseconds until the next look.
int Service::Timeout() const {
    std::int64_t timeout = TICK_MILLISECONDS;
    for (const Member& member : _members)
        if (const std::int64_t deadline = member.module->UntilDeadline(); deadline >= 0)
            timeout = std::min(timeout, deadline / 1'000'000 + 1);
    return static_cast<int>(timeout);
}

void Service::Wait(int descriptor, short events, int milliseconds) {
    pollfd descriptors[] = {{_waker->Descriptor(), POLLIN, 0}, {descriptor, events, 0}};
    ::poll(descriptors, 2, milliseconds);
    if (descriptors[0].revents != 0)
        _waker->Clear();
}

/// Until it is time to try again; meanwhile what clients have left behind is done.
void Service::WaitForBus() {
    const auto end = std::chrono::steady_clock::now() + RETRY;
    while (!_ends && std::chrono::steady_clock::now() < end) {
        Admit();
        Advance();
        Wait(-1, 0, TICK_MILLISECONDS);
    }
}

} // namespace Vesk::DBus
