// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/StreamingSettingsGroup.h"

#include "VantlePresets/editor/ChoiceBox.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/HintLabel.h"
#include "VantlePresets/editor/IntegerField.h"
#include "VantlePresets/editor/PastedAddress.h"
#include "VantlePresets/editor/Switch.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

#include <QtCore/QMetaProperty>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QToolButton>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kFieldWidth = 360;
constexpr int kNumberWidth = 90;

enum class Control { text, secret, number, protocol, toggle };

enum Kinds : unsigned { none = 0, services = 1, servers = 2, srt = 4 };

unsigned kindsOf(StreamingType type)
{
    switch (type) {
    case StreamingType::youTube:
    case StreamingType::facebook:
        return services;
    case StreamingType::rtmp:
    case StreamingType::wowza:
        return servers;
    case StreamingType::srt:
        return srt;
    case StreamingType::hls:
        return none;
    }
    return none;
}

struct RowKind
{
    const char *caption;
    const char *property;
    Control control;
    unsigned always;    ///< kinds whose forms have the row
    unsigned onRequest; ///< further kinds whose files keep the field
    bool isCredential;  ///< shown while authentication is on
};

constexpr std::array<RowKind, StreamingSettingsGroup::kRows> kRowKinds{{
    {QT_TR_NOOP("Host"), "streamingURL", Control::text, services, servers | srt, false},
    {QT_TR_NOOP("Application"), "application", Control::text, services, none, false},
    {QT_TR_NOOP("Port"), "portNumber", Control::number, services, servers | srt, false},
    {QT_TR_NOOP("Protocol"), "streamingProtocol", Control::protocol, services, servers, false},
    {QT_TR_NOOP("Auth."), "authenticate", Control::toggle, services, servers | srt, false},
    {QT_TR_NOOP("Login"), "authenticationLogin", Control::text, services, servers, true},
    {QT_TR_NOOP("Password"), "authenticationPassword", Control::secret, services, servers, true},
    {QT_TR_NOOP("Stream Key"), "streamKey", Control::secret, none, services, false},
    {QT_TR_NOOP("Backup"), "isBackup", Control::toggle, none, services, false},
}};

bool hasRow(const RowKind &row, StreamingType type, bool all)
{
    return kindsOf(type) & (row.always | (all ? row.onRequest : none));
}

} // namespace

bool StreamingSettingsGroup::hasRows(StreamingType type, bool all)
{
    return std::any_of(kRowKinds.begin(), kRowKinds.end(),
                       [&](const RowKind &row) { return hasRow(row, type, all); });
}

StreamingSettingsGroup::StreamingSettingsGroup(QWidget *parent) : GroupBox(parent), m_grid(new QGridLayout)
{
    auto *heading = new FormLabel(FormLabel::Role::heading, tr("Streaming Settings"));
    setAccessibleName(heading->text());
    rows()->addWidget(heading);
    rows()->addLayout(m_grid);
    m_grid->setHorizontalSpacing(kBetweenRows);
    m_grid->setVerticalSpacing(kInRow);
    m_grid->setColumnStretch(3, 1);
    for (int i = 0; i < kRows; ++i)
        makeRow(i);
}

void StreamingSettingsGroup::makeRow(int number)
{
    const RowKind &kind = kRowKinds[static_cast<size_t>(number)];
    Row &row = m_rows[static_cast<size_t>(number)];
    row.caption = new FormLabel(FormLabel::Role::caption, tr(kind.caption));
    row.control = makeControl(number);
    row.caption->setBuddy(row.control);
    row.control->setObjectName(QLatin1StringView(kind.property));
    row.control->setAccessibleName(row.caption->text());
    const int line = m_grid->rowCount();
    m_grid->addWidget(row.caption, line, 0);
    m_grid->addWidget(row.control, line, 1, Qt::AlignLeft | Qt::AlignVCenter);
    if (kind.control == Control::secret) {
        makeReveal(row);
        m_grid->addWidget(row.reveal, line, 2);
    }
    row.hint = new HintLabel(row.control, row.caption->text());
    m_grid->addWidget(row.hint, line + 1, 1, 1, 3);
}

QWidget *StreamingSettingsGroup::makeControl(int number)
{
    const RowKind &kind = kRowKinds[static_cast<size_t>(number)];
    switch (kind.control) {
    case Control::text:
    case Control::secret: {
        auto *field = new TextField;
        field->setMinimumWidth(kFieldWidth);
        if (kind.control == Control::secret)
            field->setEchoMode(QLineEdit::Password);
        if (number == 0)
            connect(field, &TextField::edited, this, &StreamingSettingsGroup::takeHost);
        else
            connect(field, &TextField::edited, this,
                    [this, number](const QString &text) { write(number, text); });
        return field;
    }
    case Control::number: {
        auto *field = new IntegerField;
        field->setMinimumWidth(kNumberWidth);
        connect(field, &IntegerField::valueEdited, this,
                [this, number](qint64 value) { write(number, value); });
        return field;
    }
    case Control::protocol: {
        auto *box = new ChoiceBox;
        box->setChoices(streamingProtocols().texts());
        connect(box, &ChoiceBox::chosen, this, [this](int index) {
            if (const auto preset = std::dynamic_pointer_cast<RTMPVantlePreset>(m_preset))
                preset->setStreamingProtocol(streamingProtocols().cases[static_cast<size_t>(index)].value);
        });
        return box;
    }
    case Control::toggle: {
        auto *toggle = new Switch;
        connect(toggle, &Switch::toggled, this, [this, number](bool isOn) { write(number, isOn); });
        return toggle;
    }
    }
    programmingFault("no control of a connection's row");
}

void StreamingSettingsGroup::makeReveal(Row &row)
{
    auto *field = static_cast<TextField *>(row.control);
    auto *reveal = new QToolButton;
    reveal->setText(tr("Show"));
    reveal->setCheckable(true);
    reveal->setFocusPolicy(Qt::StrongFocus);
    reveal->setObjectName("reveal"_L1 + row.caption->text().remove(u' '));
    reveal->setAccessibleName(tr("Show %1").arg(row.caption->text()));
    connect(reveal, &QToolButton::toggled, this, [field, reveal](bool isOn) {
        field->setEchoMode(isOn ? QLineEdit::Normal : QLineEdit::Password);
        reveal->setText(isOn ? tr("Hide") : tr("Show"));
    });
    row.reveal = reveal;
}

void StreamingSettingsGroup::setPreset(const std::shared_ptr<VantlePreset> &preset)
{
    if (preset == m_preset)
        return;
    if (m_preset)
        m_preset->disconnect(this);
    m_preset = preset;
    const QMetaObject *record = preset->metaObject();
    const QMetaMethod show = staticMetaObject.method(staticMetaObject.indexOfSlot("showPreset()"));
    for (const RowKind &row : kRowKinds) {
        const int property = record->indexOfProperty(row.property);
        if (property >= 0)
            connect(preset.get(), record->property(property).notifySignal(), this, show);
    }
    for (const Row &row : m_rows) {
        if (row.reveal)
            row.reveal->setChecked(false);
    }
    showPreset();
}

void StreamingSettingsGroup::setShowsAllRows(bool all)
{
    m_showsAll = all;
    if (m_preset)
        showPreset();
}

bool StreamingSettingsGroup::isShown(int number) const
{
    const RowKind &kind = kRowKinds[static_cast<size_t>(number)];
    return hasRow(kind, m_preset->type(), m_showsAll) &&
           (!kind.isCredential || m_preset->property("authenticate").toBool());
}

void StreamingSettingsGroup::showPreset()
{
    for (int i = 0; i < kRows; ++i) {
        const RowKind &kind = kRowKinds[static_cast<size_t>(i)];
        const Row &row = m_rows[static_cast<size_t>(i)];
        const bool shown = isShown(i);
        row.caption->setVisible(shown);
        row.control->setVisible(shown);
        if (row.reveal)
            row.reveal->setVisible(shown);
        const QVariant value = m_preset->property(kind.property);
        if (auto *number = qobject_cast<IntegerField *>(row.control)) {
            number->showValue(value.toLongLong());
        } else if (auto *text = qobject_cast<TextField *>(row.control)) {
            text->showValue(value.toString());
        } else if (auto *toggle = qobject_cast<Switch *>(row.control)) {
            toggle->setChecked(value.toBool());
        } else if (const auto *rtmp = dynamic_cast<const RTMPVantlePreset *>(m_preset.get())) {
            static_cast<ChoiceBox *>(row.control)->showText(displayName(rtmp->streamingProtocol()));
        }
    }
    m_host = m_preset->property("streamingURL").toString();
    showHints();
}

void StreamingSettingsGroup::setHints(const FieldHints &hints)
{
    m_hints = hints;
    showHints();
}

void StreamingSettingsGroup::showHints()
{
    for (int i = 0; i < kRows; ++i) {
        const QString property = QLatin1StringView(kRowKinds[static_cast<size_t>(i)].property);
        m_rows[static_cast<size_t>(i)].hint->setHint(isShown(i) ? m_hints.value(property) : FieldHint());
    }
}

void StreamingSettingsGroup::write(int number, const QVariant &value)
{
    const char *property = kRowKinds[static_cast<size_t>(number)].property;
    if (m_preset->property(property) != value) // a switch also turns because it shows what is held
        m_preset->setProperty(property, value);
}

void StreamingSettingsGroup::takeHost(const QString &text)
{
    // Nobody types an address in one stroke.
    const bool isPasted = text.size() > m_host.size() + 1 || (text.size() > 1 && m_host.isEmpty());
    const auto address = m_showsAll && isPasted ? PastedAddress::parse(text) : std::nullopt;
    if (!address) {
        m_preset->setProperty("streamingURL", text);
        return;
    }
    if ((m_preset->type() == StreamingType::srt) != (address->scheme == "srt"_L1)) {
        m_preset->setProperty("streamingURL", text); // of another kind: the user sees what is wrong
        return;
    }
    static_cast<TextField *>(m_rows[0].control)->endEdit();
    takeAddress(*address);
}

void StreamingSettingsGroup::takeAddress(const PastedAddress &address)
{
    if (!address.port.isEmpty())
        setIfShown("portNumber", address.port.toLongLong());
    if (const auto rtmp = std::dynamic_pointer_cast<RTMPVantlePreset>(m_preset)) {
        using P = RTMPVantlePreset::StreamingProtocol;
        const bool isRtsp =
            rtmp->streamingProtocol() == P::rtspUDP || rtmp->streamingProtocol() == P::rtspTCP;
        if (address.scheme == "rtmp"_L1)
            rtmp->setStreamingProtocol(P::rtmp);
        else if (address.scheme == "rtmps"_L1)
            rtmp->setStreamingProtocol(P::rtmps);
        else if (!isRtsp) // which of the two an address does not say
            rtmp->setStreamingProtocol(P::rtspTCP);
        if (!address.login.isEmpty() || !address.password.isEmpty()) {
            rtmp->setAuthenticate(true);
            rtmp->setAuthenticationLogin(address.login);
            rtmp->setAuthenticationPassword(address.password);
        }
    }
    if (kindsOf(m_preset->type()) != services) {
        m_preset->setProperty("streamingURL", QString(address.host + address.path));
        return;
    }
    m_preset->setProperty("streamingURL", address.host);
    if (const QString application = address.application(); !application.isEmpty())
        setIfShown("application", application);
    if (const QString key = address.streamKey(); !key.isEmpty())
        setIfShown("streamKey", key);
}

void StreamingSettingsGroup::setIfShown(const char *property, const QVariant &value)
{
    for (int i = 0; i < kRows; ++i) {
        if (qstrcmp(kRowKinds[static_cast<size_t>(i)].property, property) == 0 && isShown(i))
            m_preset->setProperty(property, value);
    }
}

} // namespace vantle
