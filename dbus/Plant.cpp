// SPDX-License-Identifier: MIT
#include "vesk/dbus/Plant.h"

#include "dbus/Service.h"

#include <utility>

namespace Vesk::DBus {

using Modules::DPVM::Vt22Module;
using Modules::DPVM::Config::IBusConfig;

static constexpr const char* SERVICE_PREFIX = "org.libvesk.Master.";
static constexpr const char* PATH = "/org/libvesk/Master";

struct Plant::Parts {
    std::shared_ptr<Service> service; // last to go: it uses the others' end of the seam
    std::shared_ptr<Cycle> cycle;
    std::shared_ptr<DBus::Published> module;
};

/// Letters, digits and underscores, and no digit first: what both a name and a path of D-Bus may have.
static void CheckName(const std::string& name) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    bool good = !name.empty() && name.size() <= 200 && letter(name.front());
    for (const char character : name)
        good = good && (letter(character) || (character >= '0' && character <= '9'));
    if (!good)
        System::_env_throw(System::ArgumentException::Create(
            "name \"" + name + "\" is no word of at most 200 letters, digits and underscores"));
}

static std::shared_ptr<Published> MakePublished(const std::string& name, std::string path,
                                                const std::shared_ptr<Cycle>& cycle,
                                                const std::shared_ptr<IBusConfig>& config,
                                                const PlantOptions& options) {
    SlaveTable slaves(config, options.slaveNames);
    SignalTable signals(options.signals, slaves);
    return std::make_shared<Published>(name, std::move(path), cycle, std::move(slaves), std::move(signals),
                                       options);
}

static std::shared_ptr<Cycle> MakeCycle(std::shared_ptr<Vt22Module> master, const PlantOptions& options,
                                        const std::shared_ptr<Waker>& waker) {
    if (!master)
        System::_throw_argument_null_exception("master");
    return Cycle::Create(std::move(master), options.measures, [waker] { waker->Wake(); });
}

std::shared_ptr<Plant> Plant::Publish(const std::string& name, std::shared_ptr<Vt22Module> master,
                                      const std::shared_ptr<IBusConfig>& config,
                                      const PlantOptions& options) {
    CheckName(name);
    auto waker = std::make_shared<Waker>();
    auto parts = std::make_unique<Parts>();
    parts->cycle = MakeCycle(std::move(master), options, waker);
    parts->module = MakePublished(name, PATH, parts->cycle, config, options);
    parts->service = std::make_shared<Service>(SERVICE_PREFIX + name, options.bus, std::move(waker));
    parts->service->Add(parts->module);
    return std::shared_ptr<Plant>(new Plant(std::move(parts)));
}

std::shared_ptr<Plant> Plant::PublishBeside(const std::string& name, std::shared_ptr<Vt22Module> master,
                                            const std::shared_ptr<IBusConfig>& config,
                                            const PlantOptions& options) {
    CheckName(name);
    const std::string path = std::string(PATH) + "/" + name;
    if (_parts->service->Has(path))
        System::_env_throw(System::ArgumentException::Create("name \"" + name + "\" is taken"));
    auto parts = std::make_unique<Parts>();
    parts->service = _parts->service;
    parts->cycle = MakeCycle(std::move(master), options, parts->service->GetWaker());
    parts->module = MakePublished(name, path, parts->cycle, config, options);
    parts->service->Add(parts->module);
    return std::shared_ptr<Plant>(new Plant(std::move(parts)));
}

Plant::Plant(std::unique_ptr<Parts> parts) : _parts(std::move(parts)) {}

Plant::~Plant() {
    _parts->cycle->SetMaster(nullptr);
    _parts->module->Close();
    _parts->service->GetWaker()->Wake();
}

void Plant::Update() {
    const auto cycle = _parts->cycle; // a callback may let go of the plant
    cycle->Update();
}

void Plant::SetMaster(std::shared_ptr<Vt22Module> master) {
    _parts->cycle->SetMaster(std::move(master));
}

bool Plant::Published() const {
    return _parts->service->IsOnBus();
}

std::string Plant::Trouble() const {
    return _parts->service->Trouble();
}

Plant::Times Plant::GetTimes() const {
    const Cycle::Statistics statistics = _parts->cycle->GetStatistics();
    const Histogram::Reading update = statistics.updateTime.Read();
    const Histogram::Reading period = statistics.period.Read();
    return {statistics.updates.Read(),
            update.least,
            update.mean,
            update.greatest,
            period.least,
            period.mean,
            period.greatest};
}

} // namespace Vesk::DBus
