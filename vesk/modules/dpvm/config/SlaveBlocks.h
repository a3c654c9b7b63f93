// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/config/ISlaveBlocks.h"

/// The five blocks of a slave record as read from their binary forms. FromStream reads a block at the
/// stream's position and leaves the stream behind it. ConfigException for a length that is not right,
/// EndOfStreamException where the stream ends early.
namespace Vesk::Modules::DPVM::Config {

class SlaveParameterData : public ISlaveParameterData {
public:
    static std::shared_ptr<ISlaveParameterData> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    unsigned char StationStatus() const override { return _stationStatus; }

    unsigned char WatchdogFactor1() const override { return _watchdogFactor1; }

    unsigned char WatchdogFactor2() const override { return _watchdogFactor2; }

    unsigned char MinStationDelayTimeResponder() const override { return _minStationDelayTimeResponder; }

    unsigned short IdentNr() const override { return _identNr; }

    unsigned char GroupIdent() const override { return _groupIdent; }

    std::shared_ptr<System::IArray<unsigned char>> UserParameters() const override { return _userParameters; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveParameterData(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveParameterData(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    unsigned char _stationStatus;
    unsigned char _watchdogFactor1;
    unsigned char _watchdogFactor2;
    unsigned char _minStationDelayTimeResponder;
    unsigned short _identNr;
    unsigned char _groupIdent;
    std::shared_ptr<System::IArray<unsigned char>> _userParameters;
};

class SlaveConfigurationData : public ISlaveConfigurationData {
public:
    static std::shared_ptr<ISlaveConfigurationData>
    FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    std::shared_ptr<System::IArray<unsigned char>> IdentifierBytes() const override {
        return _identifierBytes;
    }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveConfigurationData(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveConfigurationData(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    std::shared_ptr<System::IArray<unsigned char>> _identifierBytes;
};

class SlaveAddressTable : public ISlaveAddressTable {
public:
    static std::shared_ptr<ISlaveAddressTable> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    std::shared_ptr<System::IArray<unsigned short>> InputOffsetTable() const override {
        return _inputOffsetTable;
    }

    std::shared_ptr<System::IArray<unsigned short>> OutputOffsetTable() const override {
        return _outputOffsetTable;
    }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveAddressTable(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveAddressTable(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    std::shared_ptr<System::IArray<unsigned short>> _inputOffsetTable;
    std::shared_ptr<System::IArray<unsigned short>> _outputOffsetTable;
};

class SlaveUserData : public ISlaveUserData {
public:
    static std::shared_ptr<ISlaveUserData> FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    unsigned char InputDataLength() const override { return _inputDataLength; }

    unsigned char OutputDataLength() const override { return _outputDataLength; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveUserData(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveUserData(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    unsigned char _outputDataLength;
    unsigned char _inputDataLength;
};

/// A stream that ends within the parameters is an EndOfStreamException.
class SlaveExtendedUserParameterData : public ISlaveExtendedUserParameterData {
public:
    static std::shared_ptr<ISlaveExtendedUserParameterData>
    FromStream(const std::shared_ptr<System::IO::Stream>& stream);

    std::shared_ptr<System::IArray<unsigned char>> ExtUsrPrmData() const override { return _extUsrPrmData; }

    void ToStream(const std::shared_ptr<System::IO::Stream>& stream) const override;
    System::String ToString() const override;

    /// Gives `block` every field with its name, in the order of the bytes.
    template <class Block>
    void ShowFields(Block& block) const {
        Layout(block, *this);
    }

protected:
    explicit SlaveExtendedUserParameterData(const std::shared_ptr<System::IO::Stream>& stream);

    /// Takes every field from `block`, which gets their names, in the order of the bytes.
    template <class Block>
    explicit SlaveExtendedUserParameterData(Block& block) {
        Layout(block, *this);
    }

private:
    /// The fields in the order of the bytes, for reading, writing and printing.
    template <class Block, class Self>
    static void Layout(Block& block, Self& self);

    std::shared_ptr<System::IArray<unsigned char>> _extUsrPrmData;
};

template <class Block, class Self>
void SlaveParameterData::Layout(Block& block, Self& self) {
    block.Field("stationStatus", self._stationStatus);
    block.Field("watchdogFactor1", self._watchdogFactor1);
    block.Field("watchdogFactor2", self._watchdogFactor2);
    block.Field("minStationDelayTimeResponder", self._minStationDelayTimeResponder);
    block.Field("identNr", self._identNr);
    block.Field("groupIdent", self._groupIdent);
    block.Bytes("userParameters", self._userParameters);
}

template <class Block, class Self>
void SlaveUserData::Layout(Block& block, Self& self) {
    block.Field("outputDataLength", self._outputDataLength);
    block.Field("inputDataLength", self._inputDataLength);
    block.Reserved(2);
}

template <class Block, class Self>
void SlaveConfigurationData::Layout(Block& block, Self& self) {
    block.Bytes("identifierBytes", self._identifierBytes);
}

template <class Block, class Self>
void SlaveAddressTable::Layout(Block& block, Self& self) {
    block.Words("inputOffsetTable", self._inputOffsetTable);
    block.Words("outputOffsetTable", self._outputOffsetTable);
}

template <class Block, class Self>
void SlaveExtendedUserParameterData::Layout(Block& block, Self& self) {
    block.Bytes("extUsrPrmData", self._extUsrPrmData);
}

} // namespace Vesk::Modules::DPVM::Config
