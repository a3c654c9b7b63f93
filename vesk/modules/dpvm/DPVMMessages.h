// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"
#include "vesk/modules/dpvm/OperationMode_e.h"
#include "vesk/modules/dpvm/config/IMasterRecord.h"
#include "vesk/modules/dpvm/config/ISlaveRecord.h"
#include "vesk/system/collections/List.h"

namespace Vesk::Modules::DPVM {

/// The requests to the DP-V1 master: its services on the bus and the download of its configuration database.
/// What the module answers goes to the caller as it is.
///
/// A slave address above 126, where one is checked, is an ArgumentOutOfRangeException with the address in
/// decimal; so are more than 256 bytes of data, with the text of the array. A null array or record is an
/// ArgumentNullException where one is needed.
class DPVMMessages {
public:
    using IRequest = Mailbox::IRequest;
    using Bytes = std::shared_ptr<System::IArray<unsigned char>>;

    /// The two kinds of diagnosis that GetSlaveDiag asks for; the module's firmware defines them.
    enum class RequestType_e : unsigned char { TYPE_0 = 0, TYPE_1 = 1 };

    /// ArgumentOutOfRangeException with the mode in decimal for any other value.
    static std::shared_ptr<IRequest> SetOperationMode(OperationMode_e mode);
    /// After the address, the request type is checked the same way.
    static std::shared_ptr<IRequest> GetSlaveDiag(unsigned char slaveAddress, RequestType_e requestType);
    static std::shared_ptr<IRequest> GetSlaveConfig(unsigned char slaveAddress);
    /// `noAddressChange` and `data` are those of the Set_Slave_Add service. The new address is not checked.
    static std::shared_ptr<IRequest> SetSlaveAddress(unsigned char slaveAddress,
                                                     unsigned char newSlaveAddress,
                                                     unsigned short identNumber,
                                                     unsigned char noAddressChange, const Bytes& data);
    static std::shared_ptr<IRequest> ReadSlaveInput(unsigned char slaveAddress);
    static std::shared_ptr<IRequest> ReadSlaveOutput(unsigned char slaveAddress);
    /// `slaves` is a list of exactly 126 bytes; ArgumentOutOfRangeException with the count in decimal for any
    /// other.
    static std::shared_ptr<IRequest> StartSlave(const Bytes& slaves);
    static std::shared_ptr<IRequest> StopSlave(const Bytes& slaves);
    static std::shared_ptr<IRequest> GetLiveList();

    static std::shared_ptr<IRequest> StartDatabaseDownload();
    /// The module keeps `description`, one byte for each character.
    static std::shared_ptr<IRequest> EndDatabaseDownload(const System::String& description);
    static std::shared_ptr<IRequest>
    MasterRecordDownload(const std::shared_ptr<Config::IMasterRecord>& record);
    /// One request for each 256 bytes of the record, in their order; records up to 65280 bytes. The address
    /// is not checked.
    static std::shared_ptr<System::Collections::Generic::ReadOnlyCollection<std::shared_ptr<IRequest>>>
    SlaveRecordDownload(unsigned char slaveAddress, const std::shared_ptr<Config::ISlaveRecord>& record);
    static std::shared_ptr<IRequest> DeleteDatabase();
    /// The answer is for DatabaseInfo::FromMailboxResponse.
    static std::shared_ptr<IRequest> GetDatabaseInfo();

    static std::shared_ptr<IRequest> Class1Read(unsigned char slaveAddress, unsigned char slot,
                                                unsigned char index, unsigned char length);
    /// The module gets the low eight bits of the count of `data` as the length.
    static std::shared_ptr<IRequest> Class1Write(unsigned char slaveAddress, unsigned char slot,
                                                 unsigned char index, const Bytes& data);

    /// The caller chooses the communication reference that names the connection from then on.
    static std::shared_ptr<IRequest> Class2InitiateNormal(unsigned char slaveAddress,
                                                          unsigned short communicationReference);
    static std::shared_ptr<IRequest> Class2Abort(unsigned short communicationReference, unsigned char subnet,
                                                 unsigned char reasonCode);
    static std::shared_ptr<IRequest> Class2Read(unsigned short communicationReference, unsigned char slot,
                                                unsigned char index, unsigned char length);
    /// Length as in Class1Write.
    static std::shared_ptr<IRequest> Class2Write(unsigned short communicationReference, unsigned char slot,
                                                 unsigned char index, const Bytes& data);
};

} // namespace Vesk::Modules::DPVM
