// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <system_error>

namespace vantle::ctl {

/// Standard output can't be written: its reader went away, or the disk is full.
class OutputError : public std::system_error
{
public:
    using std::system_error::system_error;
};

/// Standard output, buffered, with every write checked. Throws OutputError. What is left in the buffer at
/// the end is written by flush(), never by the destructor.
class Output
{
public:
    /// Writes the text and a line break.
    void line(const QString &text = {});
    void bytes(QByteArrayView content);
    void flush();

private:
    QByteArray m_buffer;
};

/// With --quiet nothing is said but what was asked for and what went wrong. To be set before the command
/// runs.
void setQuiet(bool isQuiet);
[[nodiscard]] bool isQuiet();

/// Writes "vantlectl: <text>" to standard error.
void complain(const QString &text);
/// The same for what is no failure: nothing with --quiet.
void remark(const QString &text);
/// A line of the store's log: remarked or complained of.
void tellLogLine(const QString &line);

} // namespace vantle::ctl
