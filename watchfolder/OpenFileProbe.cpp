// SPDX-License-Identifier: MIT
#include "watchfolder/OpenFileProbe.h"

#include "watchfolder/FileState.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace vantle {

// A read lease is granted only while nobody has the file open for writing. It is given back at once; should
// somebody open the file in between, the kernel's notice is a signal that is ignored by default.
Writer probeWriter(const std::string &path)
{
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        return Writer::Unknown;
    fcntl(file, F_SETSIG, SIGURG);
    const bool granted = fcntl(file, F_SETLEASE, F_RDLCK) == 0;
    const bool isRefused = !granted && errno == EAGAIN;
    if (granted)
        fcntl(file, F_SETLEASE, F_UNLCK);
    close(file);
    return granted ? Writer::None : isRefused ? Writer::Some : Writer::Unknown;
}

OpenFile probeOpenFile(const std::string &path)
{
    std::error_code error;
    const auto state = readFileState(path.c_str(), error);
    if (!state || !state->isRegular || state->hasOtherLinks || probeWriter(path) == Writer::None)
        return OpenFile::Complete;
    return state->size == 0 ? OpenFile::Empty : OpenFile::Written;
}

} // namespace vantle
