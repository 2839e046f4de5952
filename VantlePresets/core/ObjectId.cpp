// SPDX-License-Identifier: MIT
#include "VantlePresets/core/ObjectId.h"

#include <QtCore/QRandomGenerator>
#include <QtCore/QtEndian>

namespace vantle {

QUuid newObjectId()
{
    thread_local QRandomGenerator random = QRandomGenerator::securelySeeded(); // the global one locks
    const quint64 first = random.generate64();
    const quint64 rest = random.generate64();
    QUuid id(static_cast<uint>(first), static_cast<ushort>(first >> 32), static_cast<ushort>(first >> 48), 0,
             0, 0, 0, 0, 0, 0, 0);
    qToLittleEndian(rest, id.data4);
    id.data3 = (id.data3 & 0x0FFF) | 0x4000;                       // version 4: random
    id.data4[0] = static_cast<uchar>((id.data4[0] & 0x3F) | 0x80); // the variant of RFC 4122
    return id;
}

} // namespace vantle
