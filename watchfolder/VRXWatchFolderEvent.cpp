// SPDX-License-Identifier: MIT
#include "watchfolder/VRXWatchFolderEvent.h"

#include "base/NativePath.h"

#include <array>
#include <bit>

namespace vantle {

namespace {

// By bit number.
constexpr std::array kFlagNames = {
    " ScanSubDirs",      " UserDropped", " KernelDropped", " IdsWrapped",        " HistoryDone",
    " RootChanged",      " Mount",       " Unmount",       " ItemCreated",       " ItemRemoved",
    " ItemInodeMetaMod", " ItemRenamed", " ItemModified",  " ItemFinderInfoMod", " ItemChangeOwner",
    " ItemXattrMod",     " ItemIsFile",  " ItemIsDir",     " ItemIsSymlink",     " OwnEvent",
};

} // namespace

VRXWatchFolderEvent::VRXWatchFolderEvent(std::string path, quint64 fileID, quint32 flags, quint64 id)
    : m_path(std::move(path)), m_fileID(fileID), m_id(id), m_flags(flags)
{
}

QString VRXWatchFolderEvent::path() const
{
    return displayPath(m_path);
}

QString VRXWatchFolderEvent::itemsFlagsString() const
{
    QString names;
    for (quint32 bit = 1; bit != 0; bit <<= 1) {
        if (has(bit))
            names += stringFromFSEventStreamEventFlag(bit);
    }
    return names;
}

QString VRXWatchFolderEvent::stringFromFSEventStreamEventFlag(quint32 flag)
{
    const auto bit = static_cast<size_t>(std::countr_zero(flag));
    if (!std::has_single_bit(flag) || bit >= kFlagNames.size())
        return {};
    return QString::fromLatin1(kFlagNames[bit]);
}

} // namespace vantle
