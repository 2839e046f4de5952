// SPDX-License-Identifier: MIT
#include "base/OpenFileProbe.h"

#include "base/Descriptor.h"
#include "watchfolder/FileState.h"

#include <fcntl.h>

#include <cerrno>
#include <csignal>

namespace vantle {

// A read lease is granted only while nobody has the file open for writing. It is given back at once; should
// somebody open the file in between, the kernel's notice is a signal that is ignored by default.
Writer probeWriter(const std::string &path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen())
        return Writer::Unknown;
    fcntl(file.get(), F_SETSIG, SIGURG);
    if (fcntl(file.get(), F_SETLEASE, F_RDLCK) != 0)
        return errno == EAGAIN ? Writer::Some : Writer::Unknown;
    fcntl(file.get(), F_SETLEASE, F_UNLCK);
    return Writer::None;
}

OpenFile probeOpenFile(const std::string &path)
{
    std::error_code error;
    const auto state = readFileState(path.c_str(), error);
    if (!state || !state->isRegular || state->hasOtherLinks)
        return OpenFile::Complete;
    const Writer writer = probeWriter(path);
    if (writer == Writer::None)
        return OpenFile::Complete;
    if (state->size > 0)
        return OpenFile::Written;
    return writer == Writer::Some ? OpenFile::Empty : OpenFile::Unknown;
}

} // namespace vantle
