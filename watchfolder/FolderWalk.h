// SPDX-License-Identifier: MIT
#pragma once

#include "watchfolder/FileState.h"

#include <string>
#include <string_view>

namespace vantle {

enum EnumerationOption : unsigned {
    /// Kept for clients that ask; hidden items are always left out.
    SkipHiddenFiles = 0x1,
    /// Kept for clients that ask; no directory counts as a package here.
    SkipPackageContents = 0x2,
    SkipSubdirectoryDescendants = 0x4,
    /// Ask the server for each state, on file systems that have one.
    AskServer = 0x8,
};

/// Hears what a walk meets. Paths are relative to the folder.
class FolderWalkVisitor
{
public:
    virtual ~FolderWalkVisitor() = default;
    [[nodiscard]] virtual bool cancelled() const = 0;
    /// Before a directory is read, with its descriptor: the place to put it under watch.
    virtual std::error_code willReadDirectory(const std::string &directory, int descriptor) = 0;
    /// One entry; the state is absent when it could not be read.
    virtual void found(const std::string &directory, std::string_view name,
                       const std::optional<FileState> &state) = 0;
    /// False ends the walk.
    virtual bool shouldContinue(const std::error_code &error, const std::string &path) = 0;
};

enum class WalkResult {
    Complete,
    Stopped, ///< by the visitor
    Starved, ///< descriptors or memory ran out: what is missing can be read later
};

/// Reads a directory of the folder and, unless the options skip them, those below it. Links are not followed;
/// the directories are read one after the other, so that depth costs no descriptors.
WalkResult walkFolder(const std::string &folder, const std::string &directory, unsigned options,
                      FolderWalkVisitor &visitor);

} // namespace vantle
