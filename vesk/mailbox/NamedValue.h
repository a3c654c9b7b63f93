// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"
#include "vesk/system/Lazy.h"
#include "vesk/system/MakeShared.h"
#include "vesk/system/collections/List.h"

#include <memory>
#include <string>

namespace Vesk::Mailbox {

/// One byte of the wire with a name for people. T is the class of a closed set of such values: one shared
/// instance each, compared by identity, and a list `VALUES` of them all.
template <class T>
class NamedValue : public System::Object {
public:
    using List = System::Collections::Generic::IList<std::shared_ptr<T>>;

    /// Makes one of the constants; nobody else calls it.
    static std::shared_ptr<T> Create(unsigned char id, System::String name) {
        return System::MakeShared<T>(id, std::move(name));
    }

    /// The constant with this wire value. ArgumentException with `id` in decimal when there is none.
    static std::shared_ptr<T> GetById(unsigned char id) {
        const std::shared_ptr<List> values = T::VALUES.Value();
        for (std::shared_ptr<T> value : *values)
            if (value->Id == id)
                return value;
        System::_env_throw(System::ArgumentException::Create(std::to_string(id)));
    }

    System::String ToString() const override { return Name; }

    const unsigned char Id;
    const System::String Name;

protected:
    NamedValue(unsigned char id, System::String name) : Id(id), Name(std::move(name)) {}

    static std::shared_ptr<List> ListOf(std::initializer_list<std::shared_ptr<T>> constants) {
        const auto list = System::Collections::Generic::List<std::shared_ptr<T>>::Create();
        for (const std::shared_ptr<T>& constant : constants)
            list->Add(constant);
        return System::Collections::Generic::ReadOnlyCollection<std::shared_ptr<T>>::Create(list);
    }
};

} // namespace Vesk::Mailbox
