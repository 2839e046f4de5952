// SPDX-License-Identifier: MIT
#include "VantlePresets/check/StepWork.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

/// HLS in a folder of this machine: there is no server to ask, only whether the folder can be had.
class FolderLook : public StepWork
{
public:
    using StepWork::StepWork;

    void start() override
    {
        const QFileInfo folder(QDir::cleanPath(QDir::current().absoluteFilePath(target().folder)));
        QFileInfo nearest = folder;
        while (!nearest.exists() && !nearest.isRoot())
            nearest = QFileInfo(nearest.path());
        const QString path = nearest.filePath();
        if (!nearest.isDir())
            failed(path + " is not a folder"_L1);
        else if (!nearest.isWritable() || !nearest.isExecutable())
            failed(path + " can't be written to"_L1);
        else
            good("no server to ask: HLS goes into "_L1 + folder.filePath() +
                 (nearest == folder ? ", which can be written to"_L1 : ", which can be made"_L1));
    }

    [[nodiscard]] QString whenLate() const override { return {}; }
};

} // namespace

const StepKind kFolder{"folder"_L1, [](CheckContext &context, StepWork::Done done) {
                           return std::unique_ptr<StepWork>(new FolderLook(context, std::move(done)));
                       }};

} // namespace vantle::check
