// SPDX-License-Identifier: MIT
#include "VantlePresets/check/FolderLook.h"
#include "VantlePresets/check/StepWork.h"

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

/// HLS in a folder of this machine: there is no server to ask, only whether the folder can be had.
class FolderStep : public StepWork
{
public:
    using StepWork::StepWork;

    void start() override
    {
        const QFileInfo folder = folderOf(target().folder);
        if (const QString fault = folderFault(target().folder); !fault.isEmpty())
            failed(fault);
        else
            good("no server to ask: HLS goes into "_L1 + folder.filePath() +
                 (folder.exists() ? ", which can be written to"_L1 : ", which can be made"_L1));
    }

    [[nodiscard]] QString whenLate() const override { return {}; }
};

} // namespace

const StepKind kFolder{"folder"_L1, [](CheckContext &context, StepWork::Done done) {
                           return std::unique_ptr<StepWork>(new FolderStep(context, std::move(done)));
                       }};

} // namespace vantle::check
