// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QtGlobal>

#include <functional>
#include <string_view>

// What a read from a kernel event queue brings, as records. Names and handles point into the bytes.
namespace vantle {

struct InotifyRecord
{
    int watch = 0;
    quint32 mask = 0;
    std::string_view name; ///< empty for the watched directory itself
};

struct FanotifyRecord
{
    std::string_view directory; ///< file-system id and file handle; empty when the record has none
    std::string_view name;      ///< "." for the directory itself
    quint32 mask = 0;
    int process = 0;
};

// Each hands over the whole records in their order. False when the bytes break off or contradict themselves:
// nothing after that place can be read, as if the kernel had dropped it.
bool forEachInotifyRecord(std::string_view bytes, const std::function<void(const InotifyRecord &)> &take);
bool forEachFanotifyRecord(std::string_view bytes, const std::function<void(const FanotifyRecord &)> &take);

} // namespace vantle
