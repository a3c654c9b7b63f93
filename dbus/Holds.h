// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/Question.h"

#include <map>
#include <string>
#include <vector>

namespace Vesk::DBus {

/// Which input bytes are held, and by whom: the service's book of it.
class Holds {
public:
    struct Hold {
        HeldByte bits;
        std::string holder;

        bool operator==(const Hold&) const = default;
    };

    /// Who else than `caller` holds or claims the byte; empty where nobody does.
    std::string HeldByAnother(unsigned short offset, const std::string& caller) const {
        const auto hold = _holds.find(offset);
        const auto claim = _claims.find(offset);
        const std::string& holder = hold != _holds.end()     ? hold->second.holder
                                    : claim != _claims.end() ? claim->second
                                                             : caller;
        return holder == caller ? "" : holder;
    }

    /// Keeps the byte for whoever wants it held, until it is known what has come of that.
    void Claim(unsigned short offset, const std::string& caller) { _claims[offset] = caller; }

    void EndClaim(unsigned short offset) { _claims.erase(offset); }

    void Add(const HeldByte& bits, const std::string& holder) {
        Hold& hold = _holds[bits.offset];
        hold.bits.Add(bits);
        hold.holder = holder;
    }

    /// Whether it was held.
    bool Remove(unsigned short offset) { return _holds.erase(offset) > 0; }

    /// Takes all bytes of a holder out of the book, of anybody for an empty name; they are to be released.
    std::vector<HeldByte> TakeOf(const std::string& holder) {
        std::vector<HeldByte> bytes;
        std::erase_if(_holds, [&](const auto& hold) {
            const bool his = holder.empty() || hold.second.holder == holder;
            if (his)
                bytes.push_back(hold.second.bits);
            return his;
        });
        return bytes;
    }

    const std::map<unsigned short, Hold>& All() const { return _holds; }

private:
    std::map<unsigned short, Hold> _holds;
    std::map<unsigned short, std::string> _claims;
};

} // namespace Vesk::DBus
