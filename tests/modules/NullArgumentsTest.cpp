// SPDX-License-Identifier: MIT
// What the modules cannot do without is missed by its name, and at once.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/RecordingHostInterface.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/modules/bootloader/BootloaderCtrl.h"
#include "vesk/modules/bootloader/CRC16.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "vesk/modules/dpvm/Vt22DeviceIdArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventArea.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/Vt22FatalEventInfo.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/CRC32.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/modules/dpvm/config/SlaveRecord.h"
#include "vesk/system/io/BinaryReader.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/io/FileStream.h"

#include <functional>

using namespace Vesk::Mailbox;
using namespace Vesk::Modules::Bootloader;
using namespace Vesk::Modules::DPVM;
using namespace Vesk::Modules::DPVM::Config;
using namespace Vesk::IO;
using namespace System::IO;

TEST(NullArgumentsTest, AreNamed) {
    const auto span = System::TimeSpan::Create(0);
    const auto bytes = System::Array<unsigned char>::Create(24);
    const auto host = std::make_shared<RecordingHostInterface>();
    const auto bootloader = Vt22Bootloader::Create(host);
    const auto master = Vt22Module::Create(host, {}, {}, {}, {});
    const auto firmware = FirmwareFileBuilder().Read();
    const auto request = DPVMMessages::GetLiveList();
    const auto info = [](auto timeStamp, auto additionalInfo) {
        return Vt22FatalEventInfo::Create(0, 0, 0, timeStamp, additionalInfo, 0, nullptr);
    };
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"hostInterface", [] { InArea::Create(0, 1, nullptr); }},
        {"hostInterface", [] { OutArea::Create(0, 1, nullptr); }},
        {"hostInterface", [] { InputSegment::Create(nullptr, 0, nullptr, 0, 1); }},
        {"hostInterface", [] { OutputSegment::Create(nullptr, 0, nullptr, 0, 1); }},
        {"src", [&] { InputSegment::Create(host, 0, nullptr, 0, 1); }},
        {"dst", [&] { OutputSegment::Create(host, 0, nullptr, 0, 1); }},
        {"hostInterface", [] { Vesk::Handshake::ApplicationIndication::Create(0, nullptr); }},
        {"hostInterface", [] { Vesk::Handshake::VelmoIndication::Create(0, nullptr); }},
        {"hostInterface", [] { MailboxAreaHandler::Create(0, nullptr); }},
        {"hostInterface", [] { BootloaderCtrl::Create(0, nullptr); }},
        {"hostInterface", [] { Vt22VelmoIndication::Create(0, 0, nullptr); }},
        {"hostInterface", [] { Vt22ApplicationIndication::Create(0, 0, nullptr); }},
        {"hostInterface", [] { Vt22DeviceIdArea::Create(0, nullptr); }},
        {"hostInterface", [] { Vt22FatalEventArea::Create(0, nullptr); }},
        {"hostInterface", [] { Vt22FieldbusOut::Create(0, nullptr, nullptr); }},
        {"hostInterface", [] { Vt22OutArea::Create(0, nullptr, nullptr, nullptr, nullptr); }},
        {"hostInterface", [] { Vt22Module::Create(nullptr, nullptr, nullptr, nullptr, nullptr); }},
        {"hostInterface", [] { Vt22Bootloader::Create(nullptr); }},
        {"path", [] { Vt22::CreateUnconfigured(nullptr, 0, nullptr, nullptr, nullptr); }},
        {"path", [] { Vt22::CreateBootloaderModule(nullptr, 0, nullptr, nullptr, nullptr); }},
        {"callable", [] { System::Func<void>::Create(nullptr); }},
        {"callable", [] { System::ArgFunc<bool, void>::Create(nullptr); }},
        {"method", [] { System::WeakMethodArgFunc<Vt22Module, bool, void>::Create({}, nullptr); }},
        {"exception", [] { System::_env_throw(nullptr); }},
        {"request", [] { MailboxTimeoutException::Create(nullptr, 1); }},
        {"response", [&] { MailboxResponseException::Create(nullptr, request); }},
        {"request", [] { MailboxResponseException::Create(std::shared_ptr<IResponse>(), nullptr); }},
        {"config", [] { Vt22::CreateConfigured(nullptr, 0, {}, {}, {}, {}, {}, {}, nullptr); }},
        {"timeStamp", [&] { info(nullptr, nullptr); }},
        {"additionalInfo", [&] { info(span, nullptr); }},
        {"sourceFile", [&] { info(span, bytes); }},
        {"info", [] { Vt22FatalEventException::Create(nullptr); }},
        {"response", [] { DatabaseInfo::FromMailboxResponse(nullptr); }},
        {"response", [&] { master->Download_GetDatabaseInfo(nullptr); }},
        {"slaves", [] { DPVMMessages::StartSlave(nullptr); }},
        {"data", [] { DPVMMessages::Class1Write(1, 2, 3, nullptr); }},
        {"data", [] { DPVMMessages::Class2Write(1, 2, 3, nullptr); }},
        {"record", [] { DPVMMessages::MasterRecordDownload(nullptr); }},
        {"record", [] { DPVMMessages::SlaveRecordDownload(1, nullptr); }},
        {"record", [] { BusConfig::Builder::Create()->Slave(7, nullptr); }},
        {"master", [] { BusConfig::Builder::Create()->Build(); }},
        {"array", [] { CRC16::Create()->Digest(nullptr); }},
        {"array", [] { CRC32::Create()->Digest(nullptr, 0, 1); }},
        {"path", [] { FileStream::Create(nullptr, FileMode::OPEN, FileAccess::READ); }},
        {"array", [] { MemoryStream::Create(nullptr); }},
        {"stream", [] { BinaryReader::Create(nullptr, true); }},
        {"stream", [] { BinaryWriter::Create(nullptr); }},
        {"stream", [] { TarnFile::FromStream(nullptr); }},
        {"stream", [] { DdbParser::FromStream(nullptr); }},
        {"stream", [] { SlaveRecord::FromStream(nullptr); }},
        {"stream", [] { DatabaseFileBuilder().Master().Read()->Master()->ToStream(nullptr); }},
        {"data", [] { Vt22Bootloader::GetSegments(nullptr); }},
        {"firmware", [&] { bootloader->BeginFirmwareDownload(nullptr, nullptr); }},
        {"remaining", [&] { bootloader->BeginBootloaderDownload(firmware, nullptr); }},
        {"remaining", [&] { bootloader->EndDownload(nullptr); }},
    };
    for (const auto& [name, call] : cases)
        ExpectFailure<System::ArgumentNullException>(std::string(name) + " must not be null", call);
    CRC32::Create()->Digest(nullptr, 0, -1); // nothing to take from it
}
