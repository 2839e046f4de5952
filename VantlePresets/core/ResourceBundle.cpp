// SPDX-License-Identifier: MIT
#include "VantlePresets/core/ResourceBundle.h"

#include "VantlePresets/core/ProgrammingFault.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <dlfcn.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// The folder of the shared library, or of the program, that holds this code.
QDir ownFolder()
{
    Dl_info info = {};
    const auto address = reinterpret_cast<const void *>(&ownFolder);
    // A program's own entry can be the bare name that it was started with, and the loader may have come to a
    // library by a link (/lib for /usr/lib).
    if (dladdr(address, &info) != 0 && info.dli_fname && QByteArrayView(info.dli_fname).contains(".so"))
        return QFileInfo(QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath()).dir();
    return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).dir();
}

QString findBundle()
{
    static constexpr auto kName = "VantlePresets_VantlePresets.bundle"_L1;
    const QDir folder = ownFolder();
    for (const QLatin1StringView place : {""_L1, "../share/vantle/"_L1, "../../share/vantle/"_L1}) {
        const QString path = folder.filePath(place + kName);
        if (QFileInfo(path).isDir())
            return QDir::cleanPath(path);
    }
    programmingFault("unable to find bundle named VantlePresets_VantlePresets");
}

} // namespace

const QString &resourceBundlePath()
{
    static const QString path = findBundle();
    return path;
}

QByteArray resourceImage(const QString &name)
{
    QFile file(resourceBundlePath() + u'/' + name + ".svg"_L1);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace vantle
