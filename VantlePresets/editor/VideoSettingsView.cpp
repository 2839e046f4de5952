// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/VideoSettingsView.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/ChoiceBox.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FieldRow.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/HintLabel.h"
#include "VantlePresets/editor/IntegerField.h"
#include "VantlePresets/editor/SettingsHeader.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kLargestSide = 16384;

QString frameRateText(double rate)
{
    return QString::number(rate, 'f', 2) + " fps"_L1;
}

QStringList frameRateTexts()
{
    QStringList texts;
    for (const double rate : VideoSettings::availableFrameRates())
        texts.append(frameRateText(rate));
    return texts;
}

/// Every name that a new rendition offers: the picker is as wide for all renditions.
const QStringList &offeredProfileNames()
{
    static const QStringList names = [] {
        QStringList all;
        for (const auto &profile : offeredH264Profiles())
            all.append(profile.displayName());
        for (const auto &profile : offeredHEVCProfiles())
            all.append(profile.displayName());
        return all;
    }();
    return names;
}

/// The profiles that suit the rendition; none when its size and rate are beyond computing.
QStringList fittingProfiles(const VideoSettings &settings)
{
    if (settings.codec() == VideoCodec::h264 &&
        !H264Profile::isComputable(settings.width(), settings.height(), settings.frameRate()))
        return {};
    return settings.profileLevels(settings.codec(), settings.resolution(), settings.frameRate());
}

} // namespace

VideoSettingsView::VideoSettingsView(const std::shared_ptr<VideoSettings> &settings,
                                     const std::shared_ptr<VantlePreset> &preset, QWidget *parent)
    : SettingsForm(settings, preset, parent)
{
    makeFields();
    observe();
    showSettings();
}

void VideoSettingsView::makeFields()
{
    const bool isFixed = dynamic_cast<const RTMPVantlePreset *>(m_preset.get()) != nullptr;
    m_header =
        new SettingsHeader(bundleSymbol(u"film"_s, filmTint()), isFixed ? QString() : u"videoSettings"_s);
    m_row = new FieldRow;
    m_hint = new HintLabel;
    rows()->addWidget(m_header);
    rows()->addWidget(m_hint);
    rows()->addWidget(m_row);

    m_codec = new ChoiceBox;
    m_codec->setChoices(videoCodecs().texts());
    m_row->addField(tr("Codec"), u"codec"_s, m_codec, 90);
    m_resolution = new ChoiceBox;
    m_resolution->setChoices(videoResolutions().texts());
    m_row->addField(tr("Resolution"), u"resolution"_s, m_resolution, 120);
    m_customWidth = new IntegerField(0, kLargestSide);
    m_row->addField(tr("Width"), u"customWidth"_s, m_customWidth, 60, m_resolution);
    m_customHeight = new IntegerField(0, kLargestSide);
    m_row->addField(tr("Height"), u"customHeight"_s, m_customHeight, 60, m_resolution);
    m_frameRate = new ChoiceBox;
    m_frameRate->setChoices(frameRateTexts());
    m_row->addField(tr("Frame Rate"), u"frameRate"_s, m_frameRate, 80);
    m_profile = new ChoiceBox;
    m_profile->reserveWidthFor(offeredProfileNames());
    m_row->addField(tr("Profile"), u"profile"_s, m_profile, 180);
    m_bitRate = new IntegerField;
    m_row->addField(tr("Bitrate (kb/s)"), u"bitRate"_s, m_bitRate, 70);
    m_maximum = new FormLabel(FormLabel::Role::caption);
    m_row->setLineBelow(m_bitRate, m_maximum);
    if (dynamic_cast<const SRTVantlePreset *>(m_preset.get())) {
        m_pid = new IntegerField;
        m_row->addField(tr("PID"), u"pid"_s, m_pid, 60);
        connect(m_pid, &IntegerField::valueEdited, this, [this](qint64 pid) { m_settings->setPid(pid); });
    }

    connect(m_header, &SettingsHeader::removeClicked, this, &VideoSettingsView::removeSettings);
    connect(m_codec, &ChoiceBox::chosen, this, [this](int index) {
        m_settings->setCodec(videoCodecs().cases[static_cast<size_t>(index)].value);
    });
    connect(m_resolution, &ChoiceBox::chosen, this, [this](int index) {
        m_settings->setResolution(videoResolutions().cases[static_cast<size_t>(index)].value);
    });
    connect(m_customWidth, &IntegerField::valueEdited, this,
            [this](qint64 width) { m_settings->setCustomWidth(width); });
    connect(m_customHeight, &IntegerField::valueEdited, this,
            [this](qint64 height) { m_settings->setCustomHeight(height); });
    connect(m_frameRate, &ChoiceBox::chosen, this,
            [this](int index) { m_settings->setFrameRate(VideoSettings::availableFrameRates().at(index)); });
    connect(m_profile, &ChoiceBox::chosen, this,
            [this](int index) { m_settings->setProfile(m_profile->choice(index)); });
    connect(m_bitRate, &IntegerField::valueEdited, this, &VideoSettingsView::takeBitRate);
}

void VideoSettingsView::takeBitRate(qint64 bitRate)
{
    m_isRateRefused = bitRate > m_maxBitrate;
    // Without a profile that fits there is no limit to keep to: the settings would take any rate for 0.
    if (m_maxBitrate > 0)
        m_settings->setBitRate(bitRate);
    Q_EMIT hintsWillChange();
}

void VideoSettingsView::showHints(const FieldHints &hints, const QString &place)
{
    m_hint->setHint(hints.value(place));
    if (!m_isRateRefused)
        return m_row->setHints(hints, place + u'.');
    FieldHints withOwn = hints;
    withOwn[place + ".bitRate"_L1].phrases.prepend(
        m_maxBitrate > 0
            ? tr("Limited to %1, the most that %2 allows")
                  .arg(QString::number(m_maxBitrate), m_settings->profile())
            : tr("Stays at %1 until the profile fits").arg(QString::number(m_settings->bitRate())));
    m_row->setHints(withOwn, place + u'.');
}

void VideoSettingsView::observe()
{
    const VideoSettings *settings = m_settings.get();
    for (const auto changed : {&VideoSettings::customWidthChanged, &VideoSettings::customHeightChanged}) {
        connect(settings, changed, this, &VideoSettingsView::showSize);
        connect(settings, changed, this, &VideoSettingsView::showProfiles);
    }
    connect(settings, &VideoSettings::codecChanged, this, &VideoSettingsView::showSettings);
    connect(settings, &VideoSettings::resolutionChanged, this, &VideoSettingsView::showSettings);
    connect(settings, &VideoSettings::frameRateChanged, this, &VideoSettingsView::showSettings);
    connect(settings, &VideoSettings::profileChanged, this, &VideoSettingsView::showProfiles);
    connect(settings, &VideoSettings::bitRateChanged, this,
            [this](qint64 bitRate) { m_bitRate->showValue(bitRate); });
    if (m_pid)
        connect(settings, &VideoSettings::pidChanged, this, [this](qint64 pid) { m_pid->showValue(pid); });
}

void VideoSettingsView::showSettings()
{
    m_header->setText(m_settings->displayName());
    setAccessibleName(m_settings->displayName());
    m_codec->showText(displayName(m_settings->codec()));
    m_resolution->showText(displayValue(m_settings->resolution()));
    m_frameRate->showChoice(VideoSettings::availableFrameRates().indexOf(m_settings->frameRate()),
                            frameRateText(m_settings->frameRate()));
    m_bitRate->showValue(m_settings->bitRate());
    if (m_pid)
        m_pid->showValue(m_settings->pid());
    showSize();
    showProfiles();
}

void VideoSettingsView::showSize()
{
    const bool isCustom = m_settings->resolution() == VideoResolution::_custom;
    m_row->setFieldVisible(m_customWidth, isCustom);
    m_row->setFieldVisible(m_customHeight, isCustom);
    m_customWidth->showValue(m_settings->customWidth());
    m_customHeight->showValue(m_settings->customHeight());
}

void VideoSettingsView::showProfiles()
{
    m_profile->setChoices(fittingProfiles(*m_settings));
    m_profile->showText(m_settings->profile());
    m_isRateRefused = false;
    m_maxBitrate = m_settings->maxBitRate();
    m_maximum->setText(tr("Maximum") + "  "_L1 + QString::number(m_maxBitrate));
}

void VideoSettingsView::removeSettings()
{
    // Equal renditions are not the same: the one that this form shows goes.
    VideoSettingsList rest = m_preset->videoSettings();
    if (rest.removeOne(m_settings))
        m_preset->setVideoSettings(rest);
    else
        m_preset->removeVideoSetting(*m_settings);
}

} // namespace vantle
