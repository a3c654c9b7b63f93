// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Vesk::DBus {

/// The bits of an input byte that somebody holds: those of the mask.
struct HeldByte {
    unsigned short offset = 0;
    unsigned char value = 0;
    unsigned char mask = 0;

    /// Takes further bits of the byte beside its own.
    void Add(const HeldByte& bits) {
        offset = bits.offset;
        value = static_cast<unsigned char>((value & ~bits.mask) | (bits.value & bits.mask));
        mask |= bits.mask;
    }

    bool operator==(const HeldByte&) const = default;
};

/// What the service asks of the cycle, and the cycle's answer. Exactly one of the two threads has it.
struct Question {
    enum class Kind : std::uint8_t {
        MESSAGES, ///< the module is sent `requests`, one after the other
        SNAPSHOT, ///< of the process data
        HOLD,     ///< the bits of `bytes`
        RELEASE,  ///< those bytes, whatever bits of them are held
    };

    enum class Outcome : std::uint8_t {
        ANSWERED,
        REFUSED,   ///< by the module, with `errorCode`
        NOT_READY, ///< the module is not there yet; `why`
        INVALID,   ///< `why`
        FAILED,    ///< an Update has failed, or there will be none; `why`
        TIMED_OUT, ///< the service did not wait for the cycle any longer; `why`
    };

    Kind kind = Kind::MESSAGES;
    std::vector<std::shared_ptr<Mailbox::IRequest>> requests;
    /// The one of them whose answer is that to the question. A refusal of it or of one before is the answer
    /// too; those behind it are sent all the same once those before it were not refused.
    std::size_t deciding = 0;
    std::vector<HeldByte> bytes;

    Outcome outcome = Outcome::ANSWERED;
    unsigned char errorCode = 0;
    std::string why;
    std::vector<unsigned char> data;   // of the module's answer, or of the input area: room for it before
    std::vector<unsigned char> output; // of the output area, likewise
    std::int64_t time = 0;             // of the snapshot, in the cycle's nanoseconds
};

} // namespace Vesk::DBus
