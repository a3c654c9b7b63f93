// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Cycle.h"
#include "tools/vesk/session/OperationModes.h"
#include "tools/vesk/text/Failure.h"
#include "vesk/modules/dpvm/Vt22Module.h"
#include "vesk/system/DateTime.h"

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// How long a request that the library has no operation for may take.
inline constexpr int SERVICE_SECONDS = 3;

/// How far a module has to be before it can do what it is asked for.
enum class Need {
    NOTHING,     // whatever it does
    BOOTED,      // it runs, and is the expected one
    CONFIGURED,  // its database is that of the session's configuration
    INITIALISED, // it has gone onto its bus
    OPERATING,   // it is online in OPERATE, and its slaves had their time to start
};

/// A request that the module answered with an error.
class Refusal : public Failure {
public:
    /// `what` was refused: "the read of record 0/1 of slave 5".
    Refusal(const std::string& what, Vesk::Mailbox::ErrorCode& error);

    unsigned char Code() const { return _code; }

private:
    Refusal(const std::string& whole, unsigned char code);

    unsigned char _code;
};

/// One life of the master module: the object that stands for the module, the loop around its Update, and what
/// the module reported meanwhile. Whose module it is, the derived classes know: OwnSession and RemoteSession.
/// Time-outs run on the library's clock.
class Session {
public:
    using State = Vesk::Modules::DPVM::Vt22Module::ModuleState_e;
    using OperationMode = Vesk::Modules::DPVM::OperationMode_e;
    using Service = std::function<void(Vesk::Modules::DPVM::IDPVMModule::ResponseAction)>;
    using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;
    /// A service of the library that asks for one thing of one slave.
    using SlaveService = void (Vesk::Modules::DPVM::IDPVMModule::*)(
        unsigned char, Vesk::Modules::DPVM::IDPVMModule::ResponseAction);

    struct Step {
        State state;
        double milliseconds; // since the start of the session
    };

    virtual ~Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Begins another life; what was reported in the one before is forgotten.
    virtual void Restart() = 0;

    /// Whether the life goes on.
    bool Alive() const { return _module != nullptr; }

    /// From now on SIGINT ends what the session waits for, but not the life.
    void OutliveInterrupts() { _outlivesInterrupts = true; }

    Vesk::Modules::DPVM::IDPVMModule& Module() { return *_module; }

    /// Whether the module is this program's own, and not an application's.
    virtual bool Owns() const = 0;

    /// The module itself, for what only its owner can do; Failure where it is an application's.
    virtual Vesk::Modules::DPVM::Vt22Module& Own() = 0;

    virtual State ModuleState() const = 0;

    /// The versions of the module's programs, "1.4.2" and "2.1", once it has booted.
    std::string FirmwareVersion() const;
    std::string BootloaderVersion() const;

    /// Called with each state that is reached, the first one included.
    void OnState(std::function<void(const Step&)> observer);

    /// Called after each Update, and now and then while the session rests.
    void OnUpdate(std::function<void()> observer) { _updateObserver = std::move(observer); }

    /// From now on each Update waits for its turn in that cycle, which has to outlive the session; null ends
    /// it.
    void In(Cycle* cycle) { _cycle = cycle; }

    /// Goes on until the module is as far as that, or says that it is not; Failure then.
    virtual void Reach(Need need) = 0;

    /// One Update, and a moment's rest for the processor. Interrupted, here and wherever it waits, when a
    /// signal has come.
    void Update();

    /// Updates until `reached` says so; Failure "Timeout waiting for `what`" after 15 s, which is longer than
    /// any time-out of the library.
    void UpdateUntil(const std::function<bool()>& reached, const std::string& what);

    /// Does nothing for that long.
    void Rest(double seconds);

    /// Updates for that long, or until `reached` says so.
    void UpdateFor(double seconds, const std::function<bool()>& reached);

    /// That service for the slave at `address`.
    Service About(unsigned int address, SlaveService service);

    /// Asks for a service and updates until it is answered, whatever the answer.
    Response TryAsk(const Service& service, const std::string& what);
    /// The same; Refusal for an error answer.
    Response Ask(const Service& service, const std::string& what);

    /// What the module says about its database; null if it holds none. Refusal for any other error.
    virtual std::shared_ptr<Vesk::Modules::DPVM::DatabaseInfo> AskForDatabase() = 0;

    /// Takes the places of input data from `places`, which may be null. Before the module is initialised.
    virtual void TakePlaces(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> places) = 0;

    /// Sets the bits of `mask`, which has as many bytes, in the input data of the slave at `address`, which
    /// the module sends to it, from its byte `offset` on. They stay as long as the life. Failure where they
    /// have no place.
    virtual void SetInput(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                          std::span<const unsigned char> mask) = 0;

    /// Asks for an operation mode and updates until the module reports it.
    void SetMode(OperationMode mode);

    /// Does `work` in an operation mode and goes back into the one before, if there was one, also
    /// where the work fails.
    void InMode(OperationMode mode, const std::function<void()>& work);

    const std::vector<Step>& Steps() const { return _steps; }

    /// How often the configuration was downloaded; each time ends in a reset.
    int Downloads() const;

    /// What the module last reported; nothing before its first report.
    std::optional<bool> Online() const { return _reports->online; }

    std::optional<OperationMode> Mode() const { return _reports->mode; }

protected:
    /// What a module object reports through its callbacks.
    struct Callbacks {
        std::shared_ptr<System::IFunc<void>> offline;
        std::shared_ptr<System::IFunc<void>> online;
        std::shared_ptr<System::IArgFunc<OperationMode, void>> mode;
    };

    /// `rest`: how long an Update rests.
    explicit Session(std::chrono::microseconds rest) : _rest(rest) {}

    /// Ends the life; what the next object reports comes through the callbacks.
    Callbacks End();
    /// The next object is there.
    void Begin(std::shared_ptr<Vesk::Modules::DPVM::IDPVMModule> module);

    /// The Update of the object.
    virtual void UpdateModule() = 0;

    /// What a signal does to the module, as the end of a sentence: "; the module is in reset".
    virtual std::string AfterSignal(int signal) const = 0;

    void CheckAlive() const;

    bool OutlivesInterrupts() const { return _outlivesInterrupts; }

    std::shared_ptr<Vesk::Modules::DPVM::IDPVMModule> _module; // null when the life has ended
    bool _settled = false; // the slaves had their time, or another mode than OPERATE is wanted

private:
    struct Reports {
        std::optional<bool> online;
        std::optional<OperationMode> mode;
    };

    void NoteState();
    void Pause(std::chrono::microseconds rest);

    std::chrono::microseconds _rest;
    System::DateTime _start = System::DateTime::Now();
    std::shared_ptr<Reports> _reports;
    bool _outlivesInterrupts = false;
    std::vector<Step> _steps;
    std::function<void(const Step&)> _stateObserver;
    std::function<void()> _updateObserver;
    Cycle* _cycle = nullptr;
};

/// How long ago that was, on the library's clock.
double SecondsSince(const System::DateTime& start);

} // namespace VeskTool
