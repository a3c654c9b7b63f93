// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/PublishedModule.h"

#include "tools/vesk/text/Failure.h"

#ifdef VESK_WITH_SDBUS
#include "dbus/Connect.h"
#include "virtualmodule/faults/Faults.h"

#include <VirtualModule1Adaptor.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <sdbus-c++/sdbus-c++.h>
#include <stdexcept>
#include <vector>
#endif

#include <algorithm>

namespace VeskTool {

std::string PublishedModule::CheckName(const std::string& name) {
    static constexpr std::size_t longest = 200; // with what stands before it no more than D-Bus allows
    static constexpr std::string_view first =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_-0123456789";
    constexpr std::size_t digits = 10;
    const bool right = !name.empty() && name.size() <= longest &&
                       name.find_first_not_of(first) == std::string::npos &&
                       first.find(name.front()) < first.size() - digits;
    return right ? ""
                 : "\"" + name + "\" is not a name of up to " + std::to_string(longest) +
                       " letters, digits, _ and -, with no digit in front";
}

#ifdef VESK_WITH_SDBUS

namespace {

using ByteVector = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr const char* NAME = "org.libvesk.VirtualModule.";
constexpr const char* PATH = "/org/libvesk/VirtualModule";
constexpr const char* INVALID_ARGUMENT = "org.libvesk.Error.InvalidArgument";

// In one turn, so that whoever asks without end does not keep the module from its steps.
constexpr int MOST_REQUESTS = 16;
// Between two looks at the states of the slaves.
constexpr auto LOOK = std::chrono::milliseconds(1);

/// Does the work; what it refuses becomes an error of D-Bus, with `whose` in front.
template <class Work>
decltype(auto) Refusing(const std::string& whose, Work work) {
    try {
        return work();
    } catch (const std::invalid_argument& wrong) {
        throw sdbus::Error(INVALID_ARGUMENT, whose + wrong.what());
    }
}

} // namespace

/// What is asked of the object becomes what is asked of the module, and what the module tells its signals.
class ModuleAdaptor final : public sdbus::AdaptorInterfaces<org::libvesk::VirtualModule1_adaptor> {
public:
    ModuleAdaptor(sdbus::IConnection& connection, VirtualModule::Module& module)
        : AdaptorInterfaces(connection, PATH), _module(module), _slaves(module.Slaves()) {
        registerAdaptor();
        _module.SetInputListener([this](std::uint8_t address, VirtualModule::ByteView input) {
            emitInputChanged(address, ByteVector(input.begin(), input.end()));
        });
    }

    ~ModuleAdaptor() {
        _module.SetInputListener(nullptr);
        unregisterAdaptor();
    }

    ModuleAdaptor(const ModuleAdaptor&) = delete;
    ModuleAdaptor& operator=(const ModuleAdaptor&) = delete;

    void TellChanges() {
        const Clock::time_point now = Clock::now();
        if (now < _nextLook)
            return;
        _nextLook = now + LOOK;
        auto slaves = _module.Slaves();
        if (slaves != _slaves) {
            _slaves = std::move(slaves);
            getObject().emitPropertiesChangedSignal(INTERFACE_NAME, {"Slaves"});
        }
    }

private:
    template <class Work>
    auto Of(std::uint8_t address, Work work) {
        VirtualModule::Station& slave =
            Refusing("", [&]() -> VirtualModule::Station& { return _module.Slave(address); });
        return Refusing("slave " + std::to_string(address) + ": ", [&] { return work(slave); });
    }

    void RemoveSlave(const std::uint8_t& address) override { SetPresent(address, false); }

    void InsertSlave(const std::uint8_t& address) override { SetPresent(address, true); }

    void SetPresent(std::uint8_t address, bool present) {
        Of(address, [&](VirtualModule::Station&) { _module.SetSlavePresent(address, present); });
    }

    void SetDiagnosis(const std::uint8_t& address, const ByteVector& data) override {
        Of(address, [&](VirtualModule::Station& slave) { slave.SetDiagnosis(data); });
    }

    void SetIdentNumber(const std::uint8_t& address, const std::uint16_t& ident) override {
        Of(address, [&](VirtualModule::Station& slave) { slave.SetIdentNumber(ident); });
    }

    void SetConfiguration(const std::uint8_t& address, const ByteVector& identifiers) override {
        Of(address, [&](VirtualModule::Station& slave) { slave.SetIdentifiers(identifiers); });
    }

    ByteVector GetInput(const std::uint8_t& address) override {
        return Of(address, [](VirtualModule::Station& slave) { return slave.Input(); });
    }

    void SetOutput(const std::uint8_t& address, const ByteVector& data) override {
        Of(address, [&](VirtualModule::Station& slave) { slave.SetOutput(data); });
    }

    void Strike(const std::string& fault, const std::uint32_t& count) override {
        Refusing("", [&] { _module.Strike(fault, count); });
    }

    void ClearFaults() override { _module.ClearFaults(); }

    void PowerCycle() override { _module.PowerCycle(); }

    std::vector<sdbus::Struct<std::uint8_t, std::uint16_t, bool, bool>> Slaves() override {
        std::vector<sdbus::Struct<std::uint8_t, std::uint16_t, bool, bool>> slaves;
        for (const auto& [address, identNumber, present, exchanges] : _module.Slaves())
            slaves.emplace_back(address, identNumber, present, exchanges);
        return slaves;
    }

    std::vector<std::string> Faults() override {
        std::vector<std::string> names;
        for (const auto& kind : VirtualModule::Faults())
            if (names.empty() || names.back() != kind.name)
                names.emplace_back(kind.name);
        return names;
    }

    VirtualModule::Module& _module;
    std::vector<VirtualModule::Module::SlaveState> _slaves; // as they were told last
    Clock::time_point _nextLook{};
};

class PublishedModule::Object {
public:
    Object(const Options& options, VirtualModule::Module& module)
        : _connection(Vesk::DBus::Connect(options.bus)), _adaptor(*_connection, module) {
        _connection->requestName(NAME + options.name);
    }

    void Serve() {
        for (int i = 0; i < MOST_REQUESTS && _connection->processPendingRequest(); ++i) {
        }
        _adaptor.TellChanges();
    }

private:
    std::unique_ptr<sdbus::IConnection> _connection;
    ModuleAdaptor _adaptor;
};

PublishedModule::PublishedModule(const Options& options, VirtualModule::Module& module) try
    : _object(std::make_unique<Object>(options, module)) {
} catch (const sdbus::Error& error) {

    const bool taken = error.getMessage().find(std::strerror(EEXIST)) != std::string::npos;
    throw Failure("cannot publish " + (NAME + options.name) + " on the bus \"" + options.bus +
                  "\": " + (taken ? "another program has this name" : error.getMessage()));
}

void PublishedModule::Serve() {
    try {
        _object->Serve();
    } catch (const sdbus::Error& error) {
        throw Failure("the connection to D-Bus is lost: " + error.getMessage());
    }
}

#else

class PublishedModule::Object {};

PublishedModule::PublishedModule(const Options&, VirtualModule::Module&) {
    throw Failure("this vesk was built without sdbus-c++, which --publish needs");
}

void PublishedModule::Serve() {}

#endif

PublishedModule::~PublishedModule() = default;

} // namespace VeskTool
