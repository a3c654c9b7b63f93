// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TestClock.h"

#include "vesk/modules/dpvm/Vt22.h"
#include "virtualmodule/InProcess.h"

#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

/// What a soak has done so far.
struct SoakCounts {
    unsigned long long worlds = 0, restarts = 0, cycles = 0, bytes = 0, messages = 0, updates = 0;
};

/// One module with one random configuration, in random use: lives that end at any moment, mappings in any
/// order, slaves that come and go, modes, acyclic requests. Every byte that comes back is compared with what
/// a model of the bus says; the first that differs is a std::runtime_error, as is a module that is no longer
/// content with its host.
class Soak {
public:
    Soak(unsigned long long seed, SoakCounts& counts);

    /// `lives` lives, one after the other.
    void Run(int lives);

private:
    using Bytes = std::vector<unsigned char>;
    using Array = System::Array<unsigned char>;
    using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;
    using Master = Vesk::Modules::DPVM::Vt22Module;
    using OperationMode = Vesk::Modules::DPVM::OperationMode_e;

    struct Slave {
        std::vector<int> inputs, outputs; // its places in the process data
        bool present = true;
    };

    /// A piece of an application's array on the process data, with bytes around it that nobody may touch.
    struct Piece {
        int place, start, count;
        std::shared_ptr<Array> array;
    };

    /// A record of a slave.
    struct Record {
        unsigned char address, slot, index;

        auto operator<=>(const Record&) const = default;
    };

    using Check = std::function<void(Vesk::Mailbox::IResponse&)>;

    int Below(int bound) { return static_cast<int>(_random() % static_cast<unsigned long long>(bound)); }

    bool OneIn(int chances) { return Below(chances) == 0; }

    unsigned char Byte() { return static_cast<unsigned char>(_random()); }

    std::pair<const unsigned char, Slave>& AnySlave();

    void MakeConfiguration();
    void Begin();
    void Live();
    std::vector<Piece> Cut(int length);
    void Map();
    void Update();
    template <class Reached>
    void UpdateUntil(const char* what, const Reached& reached);

    void Cycle();
    void ChangeInput();
    void ChangeBus();
    void ChangeMode();
    Bytes ExpectedOutput() const;
    bool OutputIs(const Bytes& expected) const;
    void CheckLists();

    void AskSomething();
    static Check Answered(bool well, const char* what);
    void AskRecord(Record record);
    /// Compares the answer of a read with what the record should have.
    Check ReadCheck(Record record) const;
    void AskClass2(Record record);
    void AskAboutSlave(unsigned char address);
    /// Notes a request that is under way, whose answer `check` looks at.
    std::shared_ptr<System::IArgFunc<Response, void>> Await(Check check);

    const Slave& At(unsigned char address) const { return _slaves.at(address); }

    std::mt19937_64 _random;
    SoakCounts& _counts;
    TestClock _clock;
    VirtualModule::Flash _flash;
    VirtualModule::InProcess _module;
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> _config;
    std::shared_ptr<Master> _master;
    std::map<unsigned char, Slave> _slaves;
    int _length = 0;                                 // of the process data, each way
    std::map<Record, std::optional<Bytes>> _records; // without bytes: nobody knows
    std::vector<Piece> _in, _out;
    Bytes _input; // what the application gives the bus
    OperationMode _wanted = OperationMode::OPERATE, _mode = OperationMode::OFFLINE;
    bool _online = false;
    int _life = 0;
    int _underWay = 0; // requests without an answer yet
};
