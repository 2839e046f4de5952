// SPDX-License-Identifier: MIT
#include "watchfolder/OwnChange.h"

#include "watchfolder/OwnChangeState.h"

namespace vantle {

OwnChange::OwnChange() = default;
OwnChange::OwnChange(OwnChange &&) noexcept = default;

OwnChange::OwnChange(std::unique_ptr<State> state) : m_state(std::move(state))
{
    m_state->session->inventory.beginOwnChange(m_state->path);
}

OwnChange::~OwnChange()
{
    if (m_state)
        m_state->session->checkChangesAtPaths(
            m_state->session->inventory.endOwnChange(m_state->path, m_state->outcome));
}

void OwnChange::hasPut(int descriptor)
{
    std::error_code error;
    const auto item = m_state ? readFileState(descriptor, error) : std::nullopt;
    if (item)
        m_state->outcome = {OwnOutcome::put, *item};
}

void OwnChange::hasRemoved()
{
    if (m_state)
        m_state->outcome = {OwnOutcome::removed, {}};
}

void OwnChange::hasMadeWhatIsThere()
{
    if (m_state)
        m_state->outcome = m_state->session->inventory.presentOutcome(m_state->path);
}

} // namespace vantle
