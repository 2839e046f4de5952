// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetFormView.h"

#include "VantlePresets/editor/AudioSettingsView.h"
#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/StreamingSettingsGroup.h"
#include "VantlePresets/editor/TextField.h"
#include "VantlePresets/editor/VideoSettingsView.h"

#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

enum SectionKind { connection, video, addVideo, audio, addAudio };

} // namespace

PresetFormView::PresetFormView(Entries entries, QWidget *parent) : LazyStack(parent)
{
    if (entries == Entries::fixed)
        return;
    m_addVideo = makeAddButton(u"film"_s, filmTint(), tr("Add Video"), u"videoSettings"_s);
    connect(m_addVideo, &QPushButton::clicked, this, [this] {
        m_preset->newVideoSettings();
        keepInSight(m_addVideo);
    });
    m_addAudio = makeAddButton(u"speaker.wave.2.fill"_s, speakerTint(), tr("Add Audio"), u"audioSettings"_s);
    connect(m_addAudio, &QPushButton::clicked, this, [this] {
        m_preset->newAudioSettings();
        keepInSight(m_addAudio);
    });
}

/// What a button adds comes above it and pushes it down. Forms take their places when the event loop turns.
void PresetFormView::keepInSight(QWidget *button)
{
    QMetaObject::invokeMethod(
        this, [this, button] { ensureWidgetVisible(button); }, Qt::QueuedConnection);
}

QPushButton *PresetFormView::makeAddButton(const QString &symbol, const QColor &tint, const QString &text,
                                           const QString &list)
{
    auto *button = new QPushButton(bundleSymbol(symbol, tint), text, content());
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button->setAutoDefault(false);
    button->setObjectName(list);
    button->setAccessibleName(text);
    return button;
}

void PresetFormView::setPreset(const std::shared_ptr<VantlePreset> &preset)
{
    if (preset == m_preset)
        return;
    if (m_preset) {
        m_preset->disconnect(this);
        if (auto *field = qobject_cast<TextField *>(focusWidget()); field && isAncestorOf(field))
            field->endEdit();
    }
    m_preset = preset;
    connect(preset.get(), &VantlePreset::videoSettingsChanged, this, &PresetFormView::showLists);
    connect(preset.get(), &VantlePreset::audioSettingsChanged, this, &PresetFormView::showLists);
    verticalScrollBar()->setValue(0);
    showConnection();
    showLists();
}

void PresetFormView::setShowsConnectionRows(bool shows)
{
    m_showsConnectionRows = shows;
    if (!m_preset)
        return;
    showConnection();
    showLists();
}

void PresetFormView::showConnection()
{
    const bool hasRows = StreamingSettingsGroup::hasRows(m_preset->type(), m_showsConnectionRows);
    if (hasRows && !m_connectionGroup)
        m_connectionGroup = new StreamingSettingsGroup(content());
    if (!m_connectionGroup)
        return;
    m_connectionGroup->setShowsAllRows(m_showsConnectionRows);
    m_connectionGroup->setPreset(m_preset);
    m_connectionGroup->setVisible(hasRows);
}

void PresetFormView::showLists()
{
    QList<Section> sections;
    if (m_connectionGroup && !m_connectionGroup->isHidden())
        sections.append({m_connectionGroup, connection, 0, m_connectionGroup});
    const VideoSettingsList &renditions = m_preset->videoSettings();
    for (qsizetype i = 0; i < renditions.size(); ++i)
        sections.append({renditions[i].get(), video, i});
    if (m_addVideo)
        sections.append({m_addVideo, addVideo, 0, m_addVideo});
    const AudioSettingsList &tracks = m_preset->audioSettings();
    for (qsizetype i = 0; i < tracks.size(); ++i)
        sections.append({tracks[i].get(), audio, i});
    if (m_addAudio)
        sections.append({m_addAudio, addAudio, 0, m_addAudio});
    setSections(sections);
}

QWidget *PresetFormView::makeForm(const Section &section)
{
    if (section.kind == video)
        return new VideoSettingsView(m_preset->videoSettings().at(section.index), m_preset);
    return new AudioSettingsView(m_preset->audioSettings().at(section.index), m_preset);
}

void PresetFormView::showInForm(QWidget *form, const Section &section)
{
    if (section.kind == video)
        static_cast<VideoSettingsView *>(form)->setSettings(m_preset->videoSettings().at(section.index),
                                                            m_preset);
    else
        static_cast<AudioSettingsView *>(form)->setSettings(m_preset->audioSettings().at(section.index),
                                                            m_preset);
}

} // namespace vantle
