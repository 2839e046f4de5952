// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/EditHistory.h"

#include "VantlePresets/editor/TextField.h"
#include "VantlePresets/model/PresetFactory.h"

#include <QtCore/QScopedValueRollback>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>

namespace vantle {
namespace {

/// Enough for thousands of steps; a preset of hundreds of renditions keeps hundreds.
constexpr qsizetype kMostBytes = qsizetype(32) << 20;

/// Empty for a preset that can't be written, which a host's rate that is no number can bring about.
QByteArray documentOf(const VantlePreset &preset)
{
    try {
        return preset.encoded(document::Format::compact);
    } catch (const std::exception &) {
        return {};
    }
}

/// The field that is being edited. What a button does is a step of its own.
QWidget *editedField()
{
    QWidget *focus = QApplication::focusWidget();
    return qobject_cast<QAbstractButton *>(focus) ? nullptr : focus;
}

} // namespace

EditHistory::EditHistory(const std::shared_ptr<PresetsManager> &manager, QObject *parent)
    : QObject(parent), m_manager(manager)
{
    connect(manager.get(), &PresetsManager::presetUpdated, this,
            [this](const std::shared_ptr<VantlePreset> &preset) {
                if (preset != m_preset)
                    return;
                m_editing = nullptr;
                take();
                m_editing = nullptr;
            });
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget *, const QWidget *now) {
        if (now == m_editing)
            return;
        take();
        m_editing = nullptr;
    });
}

void EditHistory::setPreset(const std::shared_ptr<VantlePreset> &preset)
{
    if (preset == m_preset)
        return;
    if (m_preset)
        m_preset->disconnect(this);
    m_preset = preset;
    m_documents.clear();
    m_bytes = 0;
    m_current = -1;
    m_editing = nullptr;
    observe();
    if (!preset)
        return;
    connect(preset.get(), &VantlePreset::objectWillChange, this, &EditHistory::noteChange);
    connect(preset.get(), &VantlePreset::videoSettingsChanged, this, &EditHistory::observe);
    connect(preset.get(), &VantlePreset::audioSettingsChanged, this, &EditHistory::observe);
    append(documentOf(*preset));
}

void EditHistory::observe()
{
    for (const auto &connection : std::as_const(m_records))
        disconnect(connection);
    m_records.clear();
    if (!m_preset)
        return;
    const auto follow = [this](const auto &records) {
        for (const auto &record : records)
            m_records.append(
                connect(record.get(), &ObservableRecord::objectWillChange, this, &EditHistory::noteChange));
    };
    follow(m_preset->videoSettings());
    follow(m_preset->audioSettings());
}

void EditHistory::noteChange()
{
    Q_EMIT presetWillChange();
    if (m_isTakeDue || m_isGoing)
        return;
    m_isTakeDue = true;
    QMetaObject::invokeMethod(this, &EditHistory::take, Qt::QueuedConnection);
}

void EditHistory::take()
{
    if (!std::exchange(m_isTakeDue, false) || !m_preset || m_isGoing)
        return;
    const QByteArray document = documentOf(*m_preset);
    if (document.isEmpty() || document == m_documents.value(m_current))
        return;
    for (; m_documents.size() > m_current + 1; m_documents.removeLast())
        m_bytes -= m_documents.last().size();
    QWidget *const field = editedField();
    if (field && field == m_editing && m_current > 0) {
        m_bytes -= m_documents.takeLast().size();
        --m_current;
        if (document == m_documents.last())
            return; // typed back to where it began
    }
    m_editing = field;
    append(document);
}

void EditHistory::append(const QByteArray &document)
{
    m_documents.append(document);
    m_bytes += document.size();
    for (; m_bytes > kMostBytes && m_documents.size() > 2; m_documents.removeFirst())
        m_bytes -= m_documents.first().size();
    m_current = m_documents.size() - 1;
}

void EditHistory::go(int steps)
{
    take();
    const QByteArray document = m_documents.value(m_current + steps);
    if (!m_preset || document.isEmpty())
        return;
    if (auto *field = qobject_cast<TextField *>(QApplication::focusWidget()))
        field->endEdit(); // what is typed there belongs to the state that goes
    const QScopedValueRollback guard(m_isGoing, true);
    try {
        const auto before = decodePreset(document);
        before->setName(m_preset->name());
        if (!updatePreset(*m_preset, *before))
            return;
    } catch (const std::exception &) {
        return; // the preset can be written, but not read back
    }
    m_current += steps;
    m_editing = nullptr;
}

} // namespace vantle
