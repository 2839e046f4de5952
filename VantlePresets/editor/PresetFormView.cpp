// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/PresetFormView.h"

#include "VantlePresets/editor/AudioSettingsView.h"
#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/HintLabel.h"
#include "VantlePresets/editor/StreamingSettingsGroup.h"
#include "VantlePresets/editor/TextField.h"
#include "VantlePresets/editor/VideoSettingsView.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

#include <chrono>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

using std::chrono::milliseconds;

constexpr milliseconds kPauseOfTyping{600};
constexpr milliseconds kWhileMouseIsHeld{50};

enum SectionKind { connection, video, videoHint, addVideo, audio, audioHint, addAudio };

/// As advice names it.
QString placeOf(const LazyStack::Section &section)
{
    return (section.kind == video ? "videoSettings[%1]"_L1 : "audioSettings[%1]"_L1)
        .arg(QString::number(section.index));
}

} // namespace

PresetFormView::PresetFormView(Entries entries, QWidget *parent)
    : LazyStack(parent), m_videoHint(new HintLabel(nullptr, QString(), content())),
      m_audioHint(new HintLabel(nullptr, QString(), content()))
{
    m_hintTimer.setSingleShot(true);
    connect(&m_hintTimer, &QTimer::timeout, this, &PresetFormView::showHints);
    connect(qApp, &QApplication::focusChanged, this, [this] {
        if (m_hintTimer.isActive())
            m_hintTimer.start(0);
    });
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
    if (preset == m_preset) {
        if (hintsFor(*preset) != m_hints) // it was changed while another form was shown
            showHints();
        return;
    }
    if (m_preset) {
        m_preset->disconnect(this);
        if (auto *field = qobject_cast<TextField *>(focusWidget()); field && isAncestorOf(field))
            field->endEdit();
    }
    m_preset = preset;
    connect(preset.get(), &VantlePreset::videoSettingsChanged, this, &PresetFormView::takeLists);
    connect(preset.get(), &VantlePreset::audioSettingsChanged, this, &PresetFormView::takeLists);
    verticalScrollBar()->setValue(0);
    m_hints = hintsFor(*preset);
    showConnection();
    showLists();
}

/// Hints go by the places in the lists.
void PresetFormView::takeLists()
{
    m_hints = hintsFor(*m_preset);
    showLists();
}

void PresetFormView::showHintsSoon()
{
    const auto *field = qobject_cast<const TextField *>(QApplication::focusWidget());
    m_hintTimer.start(field && field->isBeingEdited() ? kPauseOfTyping : milliseconds(0));
}

void PresetFormView::showHints()
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton) // what is being clicked must not move away
        return m_hintTimer.start(kWhileMouseIsHeld);
    const QWidget *const focus = QApplication::focusWidget();
    const bool isInside = focus && content()->isAncestorOf(focus);
    const auto heightOnScreen = [&] { return isInside ? focus->mapTo(this, QPoint()).y() : 0; };
    const int before = heightOnScreen();
    m_hints = hintsFor(*m_preset);
    if (m_connectionGroup)
        m_connectionGroup->setHints(m_hints);
    showLists();
    // As far as the form can be scrolled, the field that the user is in stays where it is.
    verticalScrollBar()->setValue(verticalScrollBar()->value() + heightOnScreen() - before);
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
    m_connectionGroup->setHints(m_hints);
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
    m_videoHint->setHint(m_hints.value(u"videoSettings"_s));
    if (!m_videoHint->text().isEmpty())
        sections.append({m_videoHint, videoHint, 0, m_videoHint});
    if (m_addVideo)
        sections.append({m_addVideo, addVideo, 0, m_addVideo});
    const AudioSettingsList &tracks = m_preset->audioSettings();
    for (qsizetype i = 0; i < tracks.size(); ++i)
        sections.append({tracks[i].get(), audio, i});
    m_audioHint->setHint(m_hints.value(u"audioSettings"_s));
    if (!m_audioHint->text().isEmpty())
        sections.append({m_audioHint, audioHint, 0, m_audioHint});
    if (m_addAudio)
        sections.append({m_addAudio, addAudio, 0, m_addAudio});
    setSections(sections);
}

QWidget *PresetFormView::makeForm(const Section &section)
{
    if (section.kind == audio) {
        auto *form = new AudioSettingsView(m_preset->audioSettings().at(section.index), m_preset);
        form->showHints(m_hints, placeOf(section));
        return form;
    }
    auto *form = new VideoSettingsView(m_preset->videoSettings().at(section.index), m_preset);
    form->showHints(m_hints, placeOf(section));
    connect(form, &VideoSettingsView::hintsWillChange, this, &PresetFormView::showHintsSoon);
    return form;
}

void PresetFormView::showInForm(QWidget *form, const Section &section)
{
    const auto show = [&](auto *view, const auto &settings) {
        view->setSettings(settings.at(section.index), m_preset);
        view->showHints(m_hints, placeOf(section));
    };
    if (section.kind == video)
        show(static_cast<VideoSettingsView *>(form), m_preset->videoSettings());
    else
        show(static_cast<AudioSettingsView *>(form), m_preset->audioSettings());
}

} // namespace vantle
