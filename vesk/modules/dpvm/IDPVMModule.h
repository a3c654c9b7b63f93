// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IResponse.h"
#include "vesk/modules/ISlaveModule.h"
#include "vesk/modules/dpvm/DatabaseInfo.h"
#include "vesk/modules/dpvm/OperationMode_e.h"

namespace Vesk::Modules::DPVM {

/// A PROFIBUS DP-V1 master.
///
/// The services queue one request each and return at once. Its answer reaches `responseAction` in a later
/// Update, on the same thread, whatever its error code; without a responseAction an error answer is a
/// MailboxResponseException out of that Update. A request that is not answered within 3 s is a
/// MailboxTimeoutException. A station address above 126 is an ArgumentOutOfRangeException, and a service
/// asked for before the first power-on a NullReferenceException; nothing is queued then.
class IDPVMModule : public Slave::ISlaveModule {
public:
    using ResponseAction = std::shared_ptr<Mailbox::IResponseAction>;

    /// The module's database matches the bus configuration that the module object was created with: false
    /// without a configuration, and in BOOTED and DOWNLOADING, whatever the database is. An initialisation
    /// that is begun there is not waited for, so from then on it is true before the comparison is over.
    virtual bool Configured() = 0;
    /// What the module says of its database. ModuleStateException "Module not configured" until Configured.
    virtual std::shared_ptr<DatabaseInfo> GetDatabaseInfo() = 0;

    /// The 16-byte station lists, one bit per station address. The array is the one that Update keeps up to
    /// date until the next power-on. NullReferenceException before the first power-on.
    virtual std::shared_ptr<System::IArray<unsigned char>> GetSlaveConfiguredList() = 0;
    virtual std::shared_ptr<System::IArray<unsigned char>> GetDataTransferList() = 0;
    virtual std::shared_ptr<System::IArray<unsigned char>> GetSlaveDiagnosticList() = 0;
    virtual std::shared_ptr<System::IArray<unsigned char>> GetDpv1ConnectionLiveList() = 0;

    /// Asks the master for an operation mode; the operation-mode callback reports when it is reached.
    /// ArgumentOutOfRangeException for a value that is no mode.
    virtual void SetOperationMode(OperationMode_e mode) = 0;

    /// The slave's diagnostics.
    virtual void GetSlaveDiag(unsigned char slaveAddress, ResponseAction responseAction) = 0;
    /// The slave's configuration identifiers.
    virtual void GetSlaveConfig(unsigned char slaveAddress, ResponseAction responseAction) = 0;
    /// Changes the station address of a slave with the ident number `identNumber`. `data`: at most 256 bytes.
    virtual void SetSlaveAddress(unsigned char slaveAddress, unsigned char newSlaveAddress,
                                 unsigned short identNumber,
                                 std::shared_ptr<System::IArray<unsigned char>> data,
                                 ResponseAction responseAction) = 0;
    /// The input or output data that the master exchanges with the slave.
    virtual void ReadSlaveInput(unsigned char slaveAddress, ResponseAction responseAction) = 0;
    virtual void ReadSlaveOutput(unsigned char slaveAddress, ResponseAction responseAction) = 0;
    /// Starts or stops slaves. `slaves`: exactly 126 bytes, one per station address from 0 on.
    virtual void StartSlaves(std::shared_ptr<System::IArray<unsigned char>> slaves,
                             ResponseAction responseAction) = 0;
    virtual void StopSlaves(std::shared_ptr<System::IArray<unsigned char>> slaves,
                            ResponseAction responseAction) = 0;
    /// The stations on the bus.
    virtual void GetLiveList(ResponseAction responseAction) = 0;

    /// Acyclic Class 1 services: `length` bytes, or `data` of at most 256 bytes, of a slave's record.
    virtual void Class1Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                            unsigned char length, ResponseAction responseAction) = 0;
    virtual void Class1Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                             std::shared_ptr<System::IArray<unsigned char>> data,
                             ResponseAction responseAction) = 0;

    /// Acyclic Class 2 services. A connection is initiated, used and aborted; its communication reference is
    /// the slave address plus one.
    virtual void Class2Initiate(unsigned char slaveAddress, ResponseAction responseAction) = 0;
    virtual void Class2Abort(unsigned char slaveAddress, unsigned char subnet, unsigned char reasonCode,
                             ResponseAction responseAction) = 0;
    virtual void Class2Read(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                            unsigned char length, ResponseAction responseAction) = 0;
    virtual void Class2Write(unsigned char slaveAddress, unsigned char slot, unsigned char index,
                             std::shared_ptr<System::IArray<unsigned char>> data,
                             ResponseAction responseAction) = 0;
};

} // namespace Vesk::Modules::DPVM
