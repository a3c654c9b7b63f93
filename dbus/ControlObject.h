// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Published.h"

#include "org.libvesk.Control1.adaptor.h"

#include <memory>
#include <string>
#include <vector>

namespace Vesk::DBus {

/// org.libvesk.Control1 of a module that is on the bus, where the application lets clients change something.
class ControlObject final : public sdbus::AdaptorInterfaces<org::libvesk::Control1_adaptor> {
public:
    ControlObject(sdbus::IConnection& connection, Published& module);
    ~ControlObject();
    ControlObject(const ControlObject&) = delete;
    ControlObject& operator=(const ControlObject&) = delete;

    /// Tells the bus where other bytes are held than before.
    void TellChanges();

private:
    using Bytes = std::vector<std::uint8_t>;

    void WriteClass1(sdbus::Result<>&& result, std::uint8_t address, std::uint8_t slot, std::uint8_t index,
                     Bytes data) override;
    void WriteClass2(sdbus::Result<>&& result, std::uint8_t address, std::uint8_t slot, std::uint8_t index,
                     Bytes data) override;
    void SetOperationMode(sdbus::Result<>&& result, std::string mode) override;
    void StartSlaves(sdbus::Result<>&& result, Bytes addresses) override;
    void StopSlaves(sdbus::Result<>&& result, Bytes addresses) override;
    void HoldInput(sdbus::Result<>&& result,
                   std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t>> bytes) override;
    void ReleaseInput(sdbus::Result<>&& result, std::uint16_t offset) override;
    std::vector<sdbus::Struct<std::uint16_t, std::uint8_t, std::uint8_t, std::string>> Held() override;

    void Ask(sdbus::Result<>&& result, std::unique_ptr<Question> question);

    Published& _module;
    std::map<unsigned short, Holds::Hold> _told;
};

} // namespace Vesk::DBus
