// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/collections/KeyNotFoundException.h"
#include "vesk/system/collections/List.h"

#include <string>

namespace System::Collections::Generic {

/// Values by key, in the order in which they were added. Keys are numbers and unique; a lookup searches the
/// keys one after the other, which suits the few stations of a bus.
template <class K, class V>
class Dictionary : public Object {
public:
    static std::shared_ptr<Dictionary> Create() { return MakeShared<Dictionary>(); }

    /// ArgumentException "Key already exists" for a key that is there; nothing changes then.
    void Add(K key, V value) {
        if (IndexOf(key) >= 0)
            _env_throw(ArgumentException::Create("Key already exists"));
        _keys->Add(key);
        _values->Add(std::move(value));
    }

    /// KeyNotFoundException with the key in decimal for a key that is not there.
    V Get(K key) const {
        const int index = IndexOf(key);
        if (index < 0)
            _env_throw(KeyNotFoundException::Create(std::to_string(key)));
        return _values->Get(index);
    }

    std::shared_ptr<List<K>> Keys() const { return _keys; }

    /// In the order of the keys.
    std::shared_ptr<List<V>> Values() const { return _values; }

protected:
    Dictionary() = default;

private:
    int IndexOf(K key) const {
        int index = 0;
        for (const K& known : *_keys) {
            if (known == key)
                return index;
            ++index;
        }
        return -1;
    }

    std::shared_ptr<List<K>> _keys = List<K>::Create();
    std::shared_ptr<List<V>> _values = List<V>::Create();
};

} // namespace System::Collections::Generic
