// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FinishedProcess.h"
#include "tests/support/QtPrinters.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace vantle::test {

/// Runs shell scripts in a folder of the test's own, in which `ctl` is vantlectl.
class ScriptTest : public testing::Test
{
protected:
    [[nodiscard]] Finished run(const std::string &text) const
    {
        return runProcess(
            {"/bin/sh", "-ec",
             "cd '" + m_folder.path() + "'; umask 022; ctl() { " VANTLECTL " \"$@\"; };" + text});
    }

    TemporaryFolder m_folder;
};

} // namespace vantle::test
