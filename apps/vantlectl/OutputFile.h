// SPDX-License-Identifier: MIT
#pragma once

#include "apps/vantlectl/Output.h"

#include <QtCore/QByteArrayView>

#include <filesystem>

namespace vantle::ctl {

/// Where the user wants a document to go.
///
/// "-" is standard output. A regular file is replaced whole, a link to one by replacing what it leads to; a
/// link to a descriptor of this process (/dev/stdout), a FIFO or a character device is written to, until all
/// is written. Everything else is refused. In a presets folder, where others may have put it, a link is
/// replaced and never followed.
class OutputFile
{
public:
    /// Throws std::system_error when nothing can be written there.
    explicit OutputFile(const std::filesystem::path &named);

    /// Whether a whole file is put in place, as opposed to written to.
    [[nodiscard]] bool isReplaced() const { return m_kind == Kind::replace; }

    /// What is to be written, and how far it may be seen.
    enum class Content {
        open,   ///< as a file of the user's usually is
        secret, ///< for the writer alone: a file becomes so, and a line says when something else is not
    };
    /// Throws std::system_error, and OutputError where standard output fails. Nothing is left of a file that
    /// could not be written whole.
    void write(QByteArrayView document, Content content, Output &out) const;
    /// As above, for a copy of a file or, for "-", of standard input: nobody may do more with it than with
    /// the source.
    void writeCopy(QByteArrayView document, const std::filesystem::path &source, Output &out) const;

private:
    enum class Kind { replace, descriptor, device };

    void writeThrough(QByteArrayView document, Content content, Output &out) const;

    QString m_name; ///< as it can be shown
    Kind m_kind = Kind::replace;
    std::filesystem::path m_path; ///< of a file, what links lead to
    int m_descriptor = -1;
};

} // namespace vantle::ctl
