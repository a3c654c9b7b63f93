// SPDX-License-Identifier: MIT
// What the application asks of the master module: its mappings, its lists and its services.
#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22Module.h"

namespace Vesk::Modules::DPVM {

using System::IArray;

static constexpr int SERVICE_SECONDS = 3;

// ---- what a power-on or an earlier step creates

void Vt22Module::RequireAreas() const {
    if (!_outArea) // the last one that a power-on creates
        System::_throw_null_reference_exception("_outArea");
}

Vt22DeviceIdArea& Vt22Module::DeviceId() const {
    if (!_deviceIdArea)
        System::_throw_null_reference_exception("_deviceIdArea");
    return *_deviceIdArea;
}

Vt22OutArea& Vt22Module::OutArea() const {
    RequireAreas();
    return *_outArea;
}

DatabaseInfo& Vt22Module::Database() const {
    if (!_databaseInfo)
        System::_throw_null_reference_exception("_databaseInfo");
    return *_databaseInfo;
}

Config::IBusConfig& Vt22Module::BusConfig() const {
    if (!_busConfig)
        System::_throw_null_reference_exception("_busConfig");
    return *_busConfig;
}

void Vt22Module::Enqueue(std::shared_ptr<Mailbox::IRequest> request, ResponseAction responseAction,
                         int timeoutSeconds) {
    if (!_mailbox)
        System::_throw_null_reference_exception("_mailbox");
    _mailbox->Enqueue(std::move(request), std::move(responseAction), timeoutSeconds);
}

void Vt22Module::Ask(std::shared_ptr<Mailbox::IRequest> request, ResponseStep step, int timeoutSeconds) {
    using Action = System::WeakMethodArgFunc<Vt22Module, std::shared_ptr<Mailbox::IResponse>, void>;
    Enqueue(std::move(request), Action::Create(weak_from_this(), step), timeoutSeconds);
}

// ---- process data

void Vt22Module::MapInputData(unsigned short offset, std::shared_ptr<IArray<unsigned char>> src,
                              int srcOffset, int count) {
    if (!_inArea)
        System::_throw_null_reference_exception("_inArea");
    _inArea->MapInputData(offset, std::move(src), srcOffset, count);
}

void Vt22Module::MapOutputData(unsigned short offset, std::shared_ptr<IArray<unsigned char>> dst,
                               int dstOffset, int count) {
    OutArea().OutputData()->MapOutputData(offset, std::move(dst), dstOffset, count);
}

static void CheckRoom(std::span<unsigned char> room, unsigned short needed) {
    if (room.size() < needed)
        System::_throw_not_less_exception(static_cast<std::int64_t>(room.size()), needed, "to",
                                          "mapped bytes");
}

int Vt22Module::CopyInputData(std::span<unsigned char> to) const {
    RequireAreas();
    CheckRoom(to, _inArea->HighestEnd());
    _inArea->CopyWritten(to.data());
    return _inArea->HighestEnd();
}

int Vt22Module::CopyOutputData(std::span<unsigned char> to) const {
    IO::OutArea& output = *OutArea().OutputData();
    CheckRoom(to, output.HighestEnd());
    output.CopyRead(to.data());
    return output.HighestEnd();
}

void Vt22Module::HoldInput(unsigned short offset, unsigned char value, unsigned char mask) {
    RequireAreas();
    _inArea->Hold(offset, value, mask);
}

void Vt22Module::ReleaseInput(unsigned short offset) {
    RequireAreas();
    _inArea->Release(offset);
}

// ---- the database and the bus

bool Vt22Module::Online() const {
    return _outArea && _outArea->Online();
}

OperationMode_e Vt22Module::OperationMode() const {
    return _outArea ? _outArea->FieldbusOut()->OperationMode() : OperationMode_e::OFFLINE;
}

std::shared_ptr<DatabaseInfo> Vt22Module::ReportedDatabase() const {
    return _databaseInfo;
}

unsigned int Vt22Module::Reports() const {
    return _outArea ? _outArea->Reports() : 0;
}

bool Vt22Module::OwesAnswer() const {
    return _applicationIndication && !_applicationIndication->Locked();
}

std::shared_ptr<DatabaseInfo> Vt22Module::GetDatabaseInfo() {
    if (!Configured())
        System::_env_throw(ModuleStateException::Create("Module not configured"));
    return _databaseInfo;
}

std::shared_ptr<IArray<unsigned char>> Vt22Module::GetSlaveConfiguredList() {
    return OutArea().FieldbusOut()->SlaveConfiguredList();
}

std::shared_ptr<IArray<unsigned char>> Vt22Module::GetDataTransferList() {
    return OutArea().FieldbusOut()->DataTransferList();
}

std::shared_ptr<IArray<unsigned char>> Vt22Module::GetSlaveDiagnosticList() {
    return OutArea().FieldbusOut()->SlaveDiagnosticList();
}

std::shared_ptr<IArray<unsigned char>> Vt22Module::GetDpv1ConnectionLiveList() {
    return OutArea().FieldbusOut()->Dpv1ConnectionLiveList();
}

// ---- the services

/// The communication reference of a slave's Class 2 connection.
static unsigned short ReferenceOf(unsigned char slaveAddress) {
    return static_cast<unsigned short>(slaveAddress + 1);
}

void Vt22Module::SetOperationMode(OperationMode_e mode) {
    Enqueue(DPVMMessages::SetOperationMode(mode), ResponseAction(), SERVICE_SECONDS);
}

void Vt22Module::GetSlaveDiag(unsigned char slaveAddress, ResponseAction responseAction) {
    Enqueue(DPVMMessages::GetSlaveDiag(slaveAddress, DPVMMessages::RequestType_e::TYPE_1),
            std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::GetSlaveConfig(unsigned char slaveAddress, ResponseAction responseAction) {
    Enqueue(DPVMMessages::GetSlaveConfig(slaveAddress), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::SetSlaveAddress(unsigned char slaveAddress, unsigned char newSlaveAddress,
                                 unsigned short identNumber, std::shared_ptr<IArray<unsigned char>> data,
                                 ResponseAction responseAction) {
    constexpr unsigned char addressMayChangeAgain = 0;
    Enqueue(DPVMMessages::SetSlaveAddress(slaveAddress, newSlaveAddress, identNumber, addressMayChangeAgain,
                                          data),
            std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::ReadSlaveInput(unsigned char slaveAddress, ResponseAction responseAction) {
    Enqueue(DPVMMessages::ReadSlaveInput(slaveAddress), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::ReadSlaveOutput(unsigned char slaveAddress, ResponseAction responseAction) {
    Enqueue(DPVMMessages::ReadSlaveOutput(slaveAddress), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::StartSlaves(std::shared_ptr<IArray<unsigned char>> slaves, ResponseAction responseAction) {
    Enqueue(DPVMMessages::StartSlave(slaves), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::StopSlaves(std::shared_ptr<IArray<unsigned char>> slaves, ResponseAction responseAction) {
    Enqueue(DPVMMessages::StopSlave(slaves), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::GetLiveList(ResponseAction responseAction) {
    Enqueue(DPVMMessages::GetLiveList(), std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::Class1Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                            unsigned char length, ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class1Read(slaveAddress, slot, index, length), std::move(responseAction),
            SERVICE_SECONDS);
}

void Vt22Module::Class1Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                             std::shared_ptr<IArray<unsigned char>> data, ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class1Write(slaveAddress, slot, index, data), std::move(responseAction),
            SERVICE_SECONDS);
}

void Vt22Module::Class2Initiate(unsigned char slaveAddress, ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class2InitiateNormal(slaveAddress, ReferenceOf(slaveAddress)),
            std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::Class2Abort(unsigned char slaveAddress, unsigned char subnet, unsigned char reasonCode,
                             ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class2Abort(ReferenceOf(slaveAddress), subnet, reasonCode),
            std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::Class2Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                            unsigned char length, ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class2Read(ReferenceOf(slaveAddress), slot, index, length),
            std::move(responseAction), SERVICE_SECONDS);
}

void Vt22Module::Class2Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                             std::shared_ptr<IArray<unsigned char>> data, ResponseAction responseAction) {
    Enqueue(DPVMMessages::Class2Write(ReferenceOf(slaveAddress), slot, index, data),
            std::move(responseAction), SERVICE_SECONDS);
}

} // namespace Vesk::Modules::DPVM
