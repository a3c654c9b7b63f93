// SPDX-License-Identifier: MIT
#include "vesk/core/FormatArray.h"

#include "vesk/system/Convert.h"

namespace Vesk {

using System::String;

template <class T>
static String Format(const std::shared_ptr<System::IArray<T>>& array, int index, int count,
                     const String& prefix, int width, int base) {
    std::string text = "[";
    for (int i = index; i < index + count; ++i) {
        if (i != index)
            text += ", ";
        if (!prefix.IsNull())
            text += prefix.Value();
        text += System::Convert::ToString(array->Get(i), base).PadLeft(width, '0').Value();
    }
    return text + "]";
}

String FormatArray(const std::shared_ptr<System::IArray<unsigned char>>& array, int index, int count,
                   const String& prefix, int width, int base) {
    return Format(array, index, count, prefix, width, base);
}

String FormatArray(const std::shared_ptr<System::IArray<unsigned short>>& array, int index, int count,
                   const String& prefix, int width, int base) {
    return Format(array, index, count, prefix, width, base);
}

} // namespace Vesk
