// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/ControlObject.h"
#include "dbus/MasterObject.h"
#include "dbus/Published.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Vesk::DBus {

/// What wakes the service's thread; a pipe of no bytes.
class Waker {
public:
    /// std::system_error without one.
    Waker();
    ~Waker();
    Waker(const Waker&) = delete;
    Waker& operator=(const Waker&) = delete;

    /// From any thread, and never waits.
    void Wake() const;

    /// Forgets how often it was woken.
    void Clear() const;

    int Descriptor() const { return _descriptor; }

private:
    int _descriptor;
};

/// The thread that has the modules of the process on the bus. Where there is no bus, or the bus goes away, it
/// tries again each second; the modules do not notice.
class Service {
public:
    /// Begins. `bus` as in PlantOptions.
    Service(std::string name, std::string bus, std::shared_ptr<Waker> waker);
    /// Ends: what waits is answered with an error.
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    /// Any thread, here and below. A module that is closed goes from the bus by itself.
    void Add(std::shared_ptr<Published> module);
    bool Has(const std::string& path) const;

    const std::string& Bus() const { return _bus; }

    const std::shared_ptr<Waker>& GetWaker() const { return _waker; }

    bool IsOnBus() const { return _onBus; }

    std::string Trouble() const;

private:
    /// A module and its objects, which are there while the bus is.
    struct Member {
        std::shared_ptr<Published> module;
        std::unique_ptr<MasterObject> master;
        std::unique_ptr<ControlObject> control;
    };

    void Run();
    void Connect();
    void Disconnect();
    void Serve();
    void Admit();
    void Advance();
    void Process();
    int Timeout() const;
    void Wait(int descriptor, short events, int milliseconds);
    void WaitForBus();

    const std::string _name;
    const std::string _bus;
    const std::shared_ptr<Waker> _waker;
    std::atomic<bool> _ends{false};
    std::atomic<bool> _onBus{false};

    mutable std::mutex _mutex;
    std::vector<std::shared_ptr<Published>> _modules; // all that are not closed; by _mutex, as the next
    std::string _trouble;

    // The thread's own.
    std::vector<Member> _members;
    std::unique_ptr<sdbus::IConnection> _connection;

    std::thread _thread; // last: it uses all of the above
};

} // namespace Vesk::DBus
