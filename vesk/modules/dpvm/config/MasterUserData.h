// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/IMasterUserData.h"

namespace Vesk::Modules::DPVM::Config {

/// Master user data as read from its binary form, 64 bytes.
class MasterUserData : public IMasterUserData {
public:
    /// Reads the block at the stream's position and leaves the stream behind it. ConfigException for a length
    /// that is not right, EndOfStreamException where the stream ends early.
    static std::shared_ptr<IMasterUserData> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    System::String Class2Name() const override { return _class2Name; }

    unsigned short IdleTime1() const override { return _idleTime1; }

    unsigned short IdleTime2() const override { return _idleTime2; }

    unsigned int DeltaT_TR() const override { return _deltaT_TR; }

    unsigned short Repeater() const override { return _repeater; }

    unsigned char GroupSync() const override { return _groupSync; }

    unsigned char GroupFreeze() const override { return _groupFreeze; }

    unsigned short IdentNr() const override { return _identNr; }

    unsigned char AddressingMode() const override { return _addressingMode; }

    unsigned char StorageFormat() const override { return _storageFormat; }

    unsigned int T_CT() const override { return _t_CT; }

    unsigned char MaxT_SH() const override { return _maxT_SH; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    /// A line for each field.
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit MasterUserData(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit MasterUserData(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    System::String _class2Name;
    unsigned short _idleTime1;
    unsigned short _idleTime2;
    unsigned int _deltaT_TR;
    unsigned short _repeater;
    unsigned char _groupSync;
    unsigned char _groupFreeze;
    unsigned short _identNr;
    unsigned char _addressingMode;
    unsigned char _storageFormat;
    unsigned int _t_CT;
    unsigned char _maxT_SH;
};

template <class Block, class Self>
void MasterUserData::Layout(Block& block, Self& self) {
    block.Text("class2Name", self._class2Name, 32);
    block.Field("idleTime1", self._idleTime1);
    block.Field("idleTime2", self._idleTime2);
    block.Reserved(2);
    block.Field("deltaT_TR", self._deltaT_TR);
    block.Reserved(4);
    block.Field("repeater", self._repeater);
    block.Field("groupSync", self._groupSync);
    block.Field("groupFreeze", self._groupFreeze);
    block.Field("identNr", self._identNr);
    block.Field("addressingMode", self._addressingMode);
    block.Field("storageFormat", self._storageFormat);
    block.Field("t_CT", self._t_CT);
    block.Field("maxT_SH", self._maxT_SH);
    block.Reserved(3);
}

} // namespace Vesk::Modules::DPVM::Config
