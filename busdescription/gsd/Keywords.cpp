// SPDX-License-Identifier: MIT
#include "busdescription/gsd/Keywords.h"

#include "busdescription/gsd/Scanner.h"

#include <unordered_map>
#include <unordered_set>

namespace BusDescription::Gsd {

namespace {

using Field = Keyword::Field;

constexpr unsigned int LENGTH = 65'535;

/// The field `member` itself.
template <auto member>
Field Plain(Device& device, std::size_t) {
    return &(device.*member);
}

std::vector<Keyword> MakeKeywords() {
    constexpr auto error = Severity::ERROR;
    std::vector<Keyword> keywords{
        {"GSD_Revision", Plain<&Device::gsdRevision>, 0, Severity::WARNING, 255},
        {"Vendor_Name", Plain<&Device::vendorName>, 0, Severity::WARNING, 0},
        {"Model_Name", Plain<&Device::modelName>, 0, Severity::WARNING, 0},
        {"Revision", Plain<&Device::revision>, 0, Severity::WARNING, 0},
        {"Hardware_Release", Plain<&Device::hardwareRelease>, 0, Severity::WARNING, 0},
        {"Software_Release", Plain<&Device::softwareRelease>, 0, Severity::WARNING, 0},
        {"OrderNumber", Plain<&Device::orderNumber>, 0, Severity::WARNING, 0},
        {"Info_Text", Plain<&Device::infoText>, 0, Severity::WARNING, 0},
        {"Ident_Number", Plain<&Device::identNumber>, 0, error, 0xFFFF},
        {"Protocol_Ident", Plain<&Device::protocolIdent>, 0, error, 255},
        {"Station_Type", Plain<&Device::stationType>, 0, error, 255},
        {"Freeze_Mode_supp", Plain<&Device::freezeMode>, 0, error, 1},
        {"Sync_Mode_supp", Plain<&Device::syncMode>, 0, error, 1},
        {"Auto_Baud_supp", Plain<&Device::autoBaud>, 0, error, 1},
        {"Set_Slave_Add_supp", Plain<&Device::setSlaveAddress>, 0, error, 1},
        {"Fail_Safe", Plain<&Device::failSafe>, 0, error, 1},
        {"Min_Slave_Intervall", Plain<&Device::minSlaveInterval>, 0, error, 65'535},
        {"Modular_Station", Plain<&Device::modularStation>, 0, error, 1},
        {"Max_Module", Plain<&Device::maxModules>, 0, error, LENGTH},
        {"Modul_Offset", Plain<&Device::moduleOffset>, 0, error, 255},
        {"FixPresetModules", Plain<&Device::fixedPresetModules>, 0, error, 1},
        {"Max_Input_Len", Plain<&Device::maxFromBus>, 0, error, LENGTH},
        {"Max_Output_Len", Plain<&Device::maxToBus>, 0, error, LENGTH},
        {"Max_Data_Len", Plain<&Device::maxData>, 0, error, LENGTH},
        {"Max_Diag_Data_Len", Plain<&Device::maxDiagnosis>, 0, error, 255},
        {"User_Prm_Data_Len", Plain<&Device::userParametersLength>, 0, error, LENGTH},
        {"Max_User_Prm_Data_Len",
         [](Device& device, std::size_t) -> Field { return &device.parameters.length; }, 0, error, LENGTH},
        {"DPV1_Slave", Plain<&Device::dpv1>, 0, error, 1},
        {"C1_Read_Write_supp", Plain<&Device::class1>, 0, error, 1},
        {"C1_Read_Write_required", Plain<&Device::class1Required>, 0, error, 1},
        {"C1_Max_Data_Len", Plain<&Device::class1MaxData>, 0, error, 255},
        {"C1_Response_Timeout", Plain<&Device::class1ResponseTimeout>, 0, error, 65'535},
        {"C2_Read_Write_supp", Plain<&Device::class2>, 0, error, 1},
        {"C2_Max_Data_Len", Plain<&Device::class2MaxData>, 0, error, 255},
        {"C2_Response_Timeout", Plain<&Device::class2ResponseTimeout>, 0, error, 65'535},
        {"Alarm_Sequence_Mode_Count", Plain<&Device::alarmSequenceModeCount>, 0, error, 255},
        {"Alarm_Type_Mode_supp", Plain<&Device::alarmTypeMode>, 0, error, 1},
        {"Extra_Alarm_SAP_supp", Plain<&Device::extraAlarmSap>, 0, error, 1},
        {"WD_Base_1ms_supp", Plain<&Device::watchdogBase1ms>, 0, error, 1},
        {"Check_Cfg_Mode", Plain<&Device::checkConfigMode>, 0, error, 1},
        {"DPV1_Data_Types", Plain<&Device::dpv1DataTypes>, 0, error, 1},
        {"Publisher_supp", Plain<&Device::publisher>, 0, error, 1},
        {"Prm_Block_Structure_supp", Plain<&Device::parameterBlocks>, 0, error, 1},
    };
    for (std::size_t i = 0; i < RATES.size(); ++i) {
        const std::string rate(RATES[i].name);
        keywords.push_back(
            {rate + "_supp",
             [](Device& device, std::size_t index) -> Field { return &device.rates[index].supported; }, i,
             error, 1});
        keywords.push_back(
            {"MaxTsdr_" + rate,
             [](Device& device, std::size_t index) -> Field { return &device.rates[index].maxTsdr; }, i,
             error, 65'535});
    }
    static constexpr const char* ALARMS[ALARM_COUNT] = {"Diagnostic", "Process", "Pull_Plug",
                                                        "Status",     "Update",  "Manufacturer_Specific"};
    for (std::size_t i = 0; i < ALARM_COUNT; ++i) {
        const std::string alarm = std::string(ALARMS[i]) + "_Alarm_";
        keywords.push_back(
            {alarm + "supp",
             [](Device& device, std::size_t index) -> Field { return &device.alarmSupported[index]; }, i,
             error, 1});
        keywords.push_back(
            {alarm + "required",
             [](Device& device, std::size_t index) -> Field { return &device.alarmRequired[index]; }, i,
             error, 1});
    }
    return keywords;
}

const std::vector<Keyword>& Keywords() {
    static const std::vector<Keyword> KEYWORDS = MakeKeywords();
    return KEYWORDS;
}

/// What the reader itself knows: blocks, their ends, and keywords with an index or within a block.
const std::vector<std::string> STRUCTURE{"PrmText",
                                         "Text",
                                         "EndPrmText",
                                         "ExtUserPrmData",
                                         "Prm_Text_Ref",
                                         "Changeable",
                                         "Visible",
                                         "EndExtUserPrmData",
                                         "Module",
                                         "Ext_Module_Prm_Data_Len",
                                         "Preset",
                                         "EndModule",
                                         "SlotDefinition",
                                         "Slot",
                                         "EndSlotDefinition",
                                         "Unit_Diag_Area",
                                         "Value",
                                         "Unit_Diag_Area_End",
                                         "Unit_Diag_Bit",
                                         "Unit_Diag_Bit_Help",
                                         "User_Prm_Data",
                                         "Ext_User_Prm_Data_Const",
                                         "Ext_User_Prm_Data_Ref",
                                         "UnitDiagType",
                                         "EndUnitDiagType",
                                         "Data_Area_Beg",
                                         "Data_Area_End",
                                         "Physical_Interface",
                                         "End_Physical_Interface",
                                         "X_Unit_Diag_Area",
                                         "X_Unit_Diag_Area_End",
                                         "Version_Firmware_Download",
                                         "End_Version_Firmware_Download"};

/// About plugs, pictures, other protocols and what a person may want to know.
const std::vector<std::string> IGNORED{"24V_Pins",
                                       "Bitmap_Device",
                                       "Bitmap_Diag",
                                       "Bitmap_SF",
                                       "C1_Read_supp",
                                       "C2_Max_Count_Channels",
                                       "C2_Read_Write_required",
                                       "C2_Read_supp",
                                       "CFG_File_Name",
                                       "Channel_Diag",
                                       "Channel_Diag_Help",
                                       "DataExchange_Broadcast_supp",
                                       "Diag_Update_Delay",
                                       "FMS_supp",
                                       "Fail_Safe_required",
                                       "I&M_supp",
                                       "Ident_Maintenance_supp",
                                       "Implementation_Type",
                                       "Isochron_Mode_required",
                                       "Isochron_Mode_supp",
                                       "Jokerblock_Location",
                                       "Jokerblock_Slot",
                                       "Jokerblock_Type",
                                       "Max_Channel_Data_Length",
                                       "Max_iParameter_Size",
                                       "OSI_supp",
                                       "Prm_Block_Structure_req",
                                       "Publisher_required",
                                       "Redundancy",
                                       "Repeater_Ctrl_Sig",
                                       "Slave_Family",
                                       "Slave_Redundancy_supp",
                                       "Subscriber_supp",
                                       "Subsystem_Module_Info",
                                       "T_BASE_DP",
                                       "T_BASE_IO",
                                       "T_DP_MAX",
                                       "T_DP_MIN",
                                       "T_I_MIN",
                                       "T_O_MIN",
                                       "T_PLL_D_MAX",
                                       "T_PLL_W_MAX",
                                       "Time_Sync_supp",
                                       "UnitDiagType_Help",
                                       "Unit_Diag_Not_Bit",
                                       "Unit_Diag_Not_Bit_Help",
                                       "Value_Help",
                                       "X_Unit_Diag_Bit",
                                       "X_Unit_Diag_Bit_Help",
                                       "X_Unit_Diag_Not_Bit",
                                       "X_Unit_Diag_Not_Bit_Help",
                                       "X_Value",
                                       "X_Value_Help"};

std::unordered_set<std::string> LowerWords(const std::vector<std::string>& words) {
    std::unordered_set<std::string> lower;
    for (const std::string& word : words)
        lower.insert(LowerWord(word));
    return lower;
}

} // namespace

const Keyword* FindKeyword(std::string_view name) {
    static const auto BY_NAME = [] {
        std::unordered_map<std::string, const Keyword*> byName;
        for (const Keyword& keyword : Keywords())
            byName.emplace(LowerWord(keyword.name), &keyword);
        return byName;
    }();
    const auto found = BY_NAME.find(LowerWord(name));
    return found == BY_NAME.end() ? nullptr : found->second;
}

bool IsIgnored(std::string_view name) {
    static const std::unordered_set<std::string> NAMES = LowerWords(IGNORED);
    return NAMES.count(LowerWord(name)) > 0;
}

bool IsKnown(std::string_view name) {
    static const std::unordered_set<std::string> NAMES = LowerWords(KnownKeywords());
    return NAMES.count(LowerWord(name)) > 0;
}

const std::vector<std::string>& KnownKeywords() {
    static const auto ALL = [] {
        std::vector<std::string> names(STRUCTURE);
        names.insert(names.end(), IGNORED.begin(), IGNORED.end());
        for (const Keyword& keyword : Keywords())
            names.push_back(keyword.name);
        return names;
    }();
    return ALL;
}

} // namespace BusDescription::Gsd
