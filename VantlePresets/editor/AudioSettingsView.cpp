// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/AudioSettingsView.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/ChannelToggles.h"
#include "VantlePresets/editor/ChoiceBox.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FieldRow.h"
#include "VantlePresets/editor/HintLabel.h"
#include "VantlePresets/editor/IntegerField.h"
#include "VantlePresets/editor/SettingsHeader.h"
#include "VantlePresets/editor/Switch.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"

#include <algorithm>
#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr std::array<qint64, 5> kSampleRates{32000, 44100, 48000, 88200, 96000};
constexpr std::array<qint64, 3> kBitsPerSample{16, 24, 32};
constexpr std::array<qint64, 7> kBitRates{64, 96, 128, 160, 192, 256, 320};

QString numberText(qint64 number)
{
    return QString::number(number);
}

QString sampleRateText(qint64 rate)
{
    return QString::number(rate) + "Hz"_L1;
}

template <size_t Size>
QStringList textsOf(const std::array<qint64, Size> &values, QString (*text)(qint64))
{
    QStringList texts;
    for (const qint64 value : values)
        texts.append(text(value));
    return texts;
}

} // namespace

AudioSettingsView::AudioSettingsView(const std::shared_ptr<AudioSettings> &settings,
                                     const std::shared_ptr<VantlePreset> &preset, QWidget *parent)
    : SettingsForm(settings, preset, parent)
{
    makeFields();
    connectFields();
    observe();
    showSettings();
}

void AudioSettingsView::makeFields()
{
    const bool isFixed = dynamic_cast<const RTMPVantlePreset *>(m_preset.get()) != nullptr;
    m_header = new SettingsHeader(bundleSymbol(u"speaker.wave.2.fill"_s, speakerTint()),
                                  isFixed ? QString() : u"audioSettings"_s);
    m_hint = new HintLabel;
    m_row = new FieldRow;
    rows()->addWidget(m_header);
    rows()->addWidget(m_hint);
    rows()->addWidget(m_row);

    m_codec = new ChoiceBox;
    m_codec->setChoices(audioCodecs().texts());
    m_row->addField(tr("Codec"), u"codec"_s, m_codec, 90);
    m_sampleRate = new ChoiceBox;
    m_sampleRate->setChoices(textsOf(kSampleRates, sampleRateText));
    m_row->addField(tr("Sample Rate"), u"sampleRate"_s, m_sampleRate, 80);
    m_bitsPerSample = new ChoiceBox;
    m_bitsPerSample->setChoices(textsOf(kBitsPerSample, numberText));
    m_row->addField(tr("Bits per sample"), u"bitsPerSample"_s, m_bitsPerSample, 80);
    m_bitRate = new ChoiceBox;
    m_bitRate->setChoices(textsOf(kBitRates, numberText));
    m_row->addField(tr("Bitrate"), u"bitRate"_s, m_bitRate, 50);
    if (!isFixed) {
        m_default = new Switch;
        m_row->addField(tr("Default"), u"isDefault"_s, m_default, 50);
    }
    m_language = new TextField;
    m_row->addField(tr("Language"), u"language"_s, m_language, 60);
    m_trackName = new TextField;
    m_row->addField(tr("Track Name"), u"trackName"_s, m_trackName, 160);
    if (dynamic_cast<const SRTVantlePreset *>(m_preset.get())) {
        m_pid = new IntegerField;
        m_row->addField(tr("PID"), u"pid"_s, m_pid, 60);
    }
    m_channels = new ChannelToggles;
    rows()->addWidget(m_channels);
    m_channelsHint = new HintLabel(m_channels, m_channels->accessibleName());
    rows()->addWidget(m_channelsHint);
}

void AudioSettingsView::connectFields()
{
    connect(m_header, &SettingsHeader::removeClicked, this, &AudioSettingsView::removeSettings);
    connect(m_codec, &ChoiceBox::chosen, this, [this](int index) {
        m_settings->setCodec(audioCodecs().cases[static_cast<size_t>(index)].value);
    });
    connect(m_sampleRate, &ChoiceBox::chosen, this,
            [this](int index) { m_settings->setSampleRate(kSampleRates[static_cast<size_t>(index)]); });
    connect(m_bitsPerSample, &ChoiceBox::chosen, this,
            [this](int index) { m_settings->setBitsPerSample(kBitsPerSample[static_cast<size_t>(index)]); });
    connect(m_bitRate, &ChoiceBox::chosen, this,
            [this](int index) { m_settings->setBitRate(kBitRates[static_cast<size_t>(index)]); });
    if (m_default)
        connect(m_default, &Switch::toggled, this, &AudioSettingsView::setDefault);
    connect(m_language, &TextField::edited, this,
            [this](const QString &language) { m_settings->setLanguage(language); });
    connect(m_trackName, &TextField::edited, this,
            [this](const QString &name) { m_settings->setTrackName(name); });
    if (m_pid)
        connect(m_pid, &IntegerField::valueEdited, this, [this](qint64 pid) { m_settings->setPid(pid); });
    connect(m_channels, &ChannelToggles::channelsEdited, this,
            [this](const QList<qint64> &channels) { m_settings->setInputChannels(channels); });
}

void AudioSettingsView::observe()
{
    const AudioSettings *settings = m_settings.get();
    connect(settings, &AudioSettings::codecChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::sampleRateChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::bitsPerSampleChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::bitRateChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::isDefaultChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::languageChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::trackNameChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::pidChanged, this, &AudioSettingsView::showSettings);
    connect(settings, &AudioSettings::inputChannelsChanged, this, &AudioSettingsView::showSettings);
}

void AudioSettingsView::showSettings()
{
    const auto show = [](ChoiceBox *box, const auto &values, qint64 value, QString (*text)(qint64)) {
        const auto found = std::find(values.begin(), values.end(), value);
        box->showChoice(found == values.end() ? -1 : found - values.begin(), text(value));
    };
    const QString heading = tr("Audio Track ") + m_settings->trackName();
    m_header->setText(heading);
    setAccessibleName(heading.trimmed());
    m_codec->showText(displayValue(m_settings->codec()));
    show(m_sampleRate, kSampleRates, m_settings->sampleRate(), sampleRateText);
    show(m_bitsPerSample, kBitsPerSample, m_settings->bitsPerSample(), numberText);
    show(m_bitRate, kBitRates, m_settings->bitRate(), numberText);
    if (m_default)
        m_default->setChecked(m_settings->isDefault());
    m_language->showValue(m_settings->language());
    m_trackName->showValue(m_settings->trackName());
    if (m_pid)
        m_pid->showValue(m_settings->pid());
    m_channels->showChannels(m_settings->inputChannels());
}

void AudioSettingsView::showHints(const FieldHints &hints, const QString &place)
{
    m_hint->setHint(hints.value(place));
    m_row->setHints(hints, place + u'.');
    m_channelsHint->setHint(hints.value(place + ".inputChannels"_L1));
}

void AudioSettingsView::setDefault(bool isDefault)
{
    if (isDefault == m_settings->isDefault())
        return; // it shows what is held
    m_settings->setIsDefault(isDefault);
    // A track that came from a file reports to nobody: its preset hears of the change from here.
    if (!m_settings->delegate())
        m_preset->audioSettingsDidChangeDefault(m_settings, isDefault);
}

void AudioSettingsView::removeSettings()
{
    // Copies of a track equal it: the one that this form shows goes.
    AudioSettingsList rest = m_preset->audioSettings();
    if (rest.removeOne(m_settings))
        m_preset->setAudioSettings(rest);
    else
        m_preset->removeAudioSettings(*m_settings);
}

} // namespace vantle
