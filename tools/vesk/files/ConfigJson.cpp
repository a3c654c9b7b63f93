// SPDX-License-Identifier: MIT
#include "tools/vesk/files/ConfigJson.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Elements.h"
#include "tools/vesk/text/Text.h"

namespace VeskTool {

using namespace Vesk::Modules::DPVM::Config;
using nlohmann::ordered_json;

static std::string Digits(System::IArray<unsigned char>& bytes) {
    return HexDigits(Elements(bytes));
}

static ordered_json ToJson(const IMasterUserData& data) {
    const std::string name = data.Class2Name().Value();
    return {
        {"class2Name", Printable(name.substr(0, name.find_last_not_of('\0') + 1))},
        {"idleTime1", data.IdleTime1()},
        {"idleTime2", data.IdleTime2()},
        {"deltaT_TR", data.DeltaT_TR()},
        {"repeater", data.Repeater()},
        {"groupSync", data.GroupSync()},
        {"groupFreeze", data.GroupFreeze()},
        {"identNr", data.IdentNr()},
        {"addressingMode", data.AddressingMode()},
        {"storageFormat", data.StorageFormat()},
        {"t_CT", data.T_CT()},
        {"maxT_SH", data.MaxT_SH()},
    };
}

static ordered_json ToJson(const IMasterRecord& record) {
    return {
        {"stationAddress", record.StationAddress()},
        {"dataRate", record.DataRate()},
        {"slotTime", record.SlotTime()},
        {"minStationDelayTime", record.MinStationDelayTime()},
        {"maxStationDelayTime", record.MaxStationDelayTime()},
        {"quietTime", record.QuietTime()},
        {"setupTime", record.SetupTime()},
        {"targetRotationTime", record.TargetRotationTime()},
        {"gapUpdateFactor", record.GapUpdateFactor()},
        {"highestStationAddress", record.HighestStationAddress()},
        {"maxRetryLimit", record.MaxRetryLimit()},
        {"bpFlag", record.BpFlag()},
        {"minSlaveInterval", record.MinSlaveInterval()},
        {"pollTimeout", record.PollTimeout()},
        {"dataControlTime", record.DataControlTime()},
        {"alarmMax", record.AlarmMax()},
        {"maxUserGlobalControl", record.MaxUserGlobalControl()},
        {"userData", ToJson(*record.UserData())},
    };
}

static ordered_json ToJson(const ISlaveParameterData& data) {
    return {
        {"stationStatus", data.StationStatus()},
        {"watchdogFactor1", data.WatchdogFactor1()},
        {"watchdogFactor2", data.WatchdogFactor2()},
        {"minStationDelayTimeResponder", data.MinStationDelayTimeResponder()},
        {"identNr", data.IdentNr()},
        {"groupIdent", data.GroupIdent()},
        {"userParameters", Digits(*data.UserParameters())},
    };
}

static ordered_json ToJson(const ISlaveRecord& record) {
    const auto table = record.AddressTable();
    return {
        {"slaveFlags", record.SlaveFlags()},
        {"slaveType", record.SlaveType()},
        {"maxDiagnosticDataLength", record.MaxDiagnosticDataLength()},
        {"maxChannelDataLength", record.MaxChannelDataLength()},
        {"diagUpdDelay", record.DiagUpdDelay()},
        {"alarmMode", record.AlarmMode()},
        {"additionalSlaveFlags", record.AdditionalSlaveFlags()},
        {"mSAC1Timeout", record.MSAC1Timeout()},
        {"parameterData", ToJson(*record.ParameterData())},
        {"configurationData", {{"identifierBytes", Digits(*record.ConfigurationData()->IdentifierBytes())}}},
        {"addressTable",
         {{"inputOffsetTable", Elements(*table->InputOffsetTable())},
          {"outputOffsetTable", Elements(*table->OutputOffsetTable())}}},
        {"userData",
         {{"inputDataLength", record.UserData()->InputDataLength()},
          {"outputDataLength", record.UserData()->OutputDataLength()}}},
        {"extendedUserParameterData",
         {{"extUsrPrmData", Digits(*record.ExtendedUserParameterData()->ExtUsrPrmData())}}},
    };
}

ordered_json ToJson(const IBusConfig& config) {
    ordered_json slaves = ordered_json::array();
    for (const unsigned char address : Elements(*config.SlaveAddresses())) {
        ordered_json slave{{"address", address}};
        slave.update(ToJson(*config.Slave(address)));
        slaves.push_back(std::move(slave));
    }
    return {{"checksum", ChecksumText(config.Checksum())},
            {"master", ToJson(*config.Master())},
            {"slaves", std::move(slaves)}};
}

} // namespace VeskTool
