// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/session/Link.h"
#include "tools/vesk/session/ProcessData.h"
#include "tools/vesk/session/Session.h"

namespace VeskTool {

/// A session with a module of one's own: a new one resets the module and takes it as far as it is needed. An
/// exception out of an Update ends the life and puts the module into reset; everything but Restart is a
/// Failure then.
class OwnSession final : public Session {
public:
    /// `config` may be null: then the module's database is taken as it is. The library's exceptions pass
    /// through.
    OwnSession(Link link, std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config);

    /// The module object goes, and a new one resets the module. Input data are 0 again.
    void Restart() override;

    bool Owns() const override { return true; }

    Vesk::Modules::DPVM::Vt22Module& Own() override;

    State ModuleState() const override;

    /// Returns at once where the module is already as far as that, and does not leave an operation mode that
    /// was set. Failure where the module holds no database.
    void Reach(Need need) override;

    std::shared_ptr<Vesk::Modules::DPVM::DatabaseInfo> AskForDatabase() override;

    void TakePlaces(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> places) override;
    void SetInput(unsigned int address, std::size_t offset, std::span<const unsigned char> bytes,
                  std::span<const unsigned char> mask) override;

protected:
    void UpdateModule() override;
    std::string AfterSignal(int signal) const override;

private:
    void Initialise();
    void Operate();
    bool AllExchange();

    Link _link;
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> _config;
    InputData _inputs;
};

} // namespace VeskTool
