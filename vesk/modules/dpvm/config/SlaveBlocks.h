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

protected:
    explicit SlaveParameterData(const std::shared_ptr<System::IO::Stream>& stream);

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

protected:
    explicit SlaveConfigurationData(const std::shared_ptr<System::IO::Stream>& stream);

private:
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

protected:
    explicit SlaveAddressTable(const std::shared_ptr<System::IO::Stream>& stream);

private:
    std::shared_ptr<System::IArray<unsigned short>> _offsets; // both tables, of which the others are views
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

protected:
    explicit SlaveUserData(const std::shared_ptr<System::IO::Stream>& stream);

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

protected:
    explicit SlaveExtendedUserParameterData(const std::shared_ptr<System::IO::Stream>& stream);

private:
    std::shared_ptr<System::IArray<unsigned char>> _extUsrPrmData;
};

} // namespace Vesk::Modules::DPVM::Config
