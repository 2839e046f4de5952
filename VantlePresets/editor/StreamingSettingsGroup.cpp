// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/StreamingSettingsGroup.h"

#include "VantlePresets/editor/ChoiceBox.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/IntegerField.h"
#include "VantlePresets/editor/Switch.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kFieldWidth = 360;

} // namespace

StreamingSettingsGroup::StreamingSettingsGroup(QWidget *parent)
    : GroupBox(parent), m_grid(new QGridLayout), m_host(new TextField), m_application(new TextField),
      m_port(new IntegerField), m_protocol(new ChoiceBox), m_authenticate(new Switch), m_login(new TextField),
      m_password(new TextField), m_reveal(new QToolButton)
{
    rows()->addWidget(new FormLabel(FormLabel::Voice::heading, tr("Streaming Settings")));
    rows()->addLayout(m_grid);
    m_grid->setHorizontalSpacing(kBetweenRows);
    m_grid->setVerticalSpacing(kInRow);
    m_grid->setColumnStretch(3, 1);

    m_protocol->setChoices(streamingProtocols().texts());
    m_password->setEchoMode(QLineEdit::Password);
    m_reveal->setText(tr("Show"));
    m_reveal->setCheckable(true);
    m_reveal->setAutoRaise(true);
    m_reveal->setFocusPolicy(Qt::StrongFocus);
    m_reveal->setObjectName(u"revealPassword"_s);
    m_reveal->setAccessibleName(tr("Show Password"));

    addRow(tr("Host"), u"streamingURL"_s, m_host);
    addRow(tr("Application"), u"application"_s, m_application);
    addRow(tr("Port"), u"portNumber"_s, m_port);
    addRow(tr("Protocol"), u"streamingProtocol"_s, m_protocol);
    addRow(tr("Auth."), u"authenticate"_s, m_authenticate);
    const int shownAlways = m_grid->count();
    addRow(tr("Login"), u"authenticationLogin"_s, m_login);
    addRow(tr("Password"), u"authenticationPassword"_s, m_password, m_reveal);
    for (int i = shownAlways; i < m_grid->count(); ++i)
        m_credentials.append(m_grid->itemAt(i)->widget());
    connectFields();
}

void StreamingSettingsGroup::addRow(const QString &caption, const QString &property, QWidget *control,
                                    QWidget *beside)
{
    const int row = m_grid->rowCount();
    auto *label = new FormLabel(FormLabel::Voice::caption, caption);
    label->setBuddy(control);
    control->setObjectName(property);
    control->setAccessibleName(caption);
    if (qobject_cast<TextField *>(control))
        control->setFixedWidth(qobject_cast<IntegerField *>(control) ? 90 : kFieldWidth);
    m_grid->addWidget(label, row, 0);
    m_grid->addWidget(control, row, 1, Qt::AlignLeft | Qt::AlignVCenter);
    if (beside)
        m_grid->addWidget(beside, row, 2);
}

void StreamingSettingsGroup::setPreset(const std::shared_ptr<RTMPVantlePreset> &preset)
{
    if (preset == m_preset)
        return;
    if (m_preset)
        m_preset->disconnect(this);
    m_preset = preset;
    const RTMPVantlePreset *p = preset.get();
    connect(p, &RTMPVantlePreset::streamingURLChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::applicationChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::portNumberChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::streamingProtocolChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::authenticateChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::authenticationLoginChanged, this, &StreamingSettingsGroup::showPreset);
    connect(p, &RTMPVantlePreset::authenticationPasswordChanged, this, &StreamingSettingsGroup::showPreset);
    m_reveal->setChecked(false);
    revealPassword(false);
    showPreset();
}

void StreamingSettingsGroup::connectFields()
{
    connect(m_host, &TextField::edited, this,
            [this](const QString &host) { m_preset->setStreamingURL(host); });
    connect(m_application, &TextField::edited, this,
            [this](const QString &application) { m_preset->setApplication(application); });
    connect(m_port, &IntegerField::valueEdited, this, [this](qint64 port) { m_preset->setPortNumber(port); });
    connect(m_protocol, &ChoiceBox::chosen, this, [this](int index) {
        m_preset->setStreamingProtocol(streamingProtocols().cases[static_cast<size_t>(index)].value);
    });
    connect(m_authenticate, &Switch::clicked, this, [this](bool on) { m_preset->setAuthenticate(on); });
    connect(m_login, &TextField::edited, this,
            [this](const QString &login) { m_preset->setAuthenticationLogin(login); });
    connect(m_password, &TextField::edited, this,
            [this](const QString &password) { m_preset->setAuthenticationPassword(password); });
    connect(m_reveal, &QToolButton::clicked, this, &StreamingSettingsGroup::revealPassword);
}

void StreamingSettingsGroup::showPreset()
{
    m_host->showValue(m_preset->streamingURL());
    m_application->showValue(m_preset->application());
    m_port->showValue(m_preset->portNumber());
    m_protocol->showText(displayName(m_preset->streamingProtocol()));
    m_authenticate->setChecked(m_preset->authenticate());
    m_login->showValue(m_preset->authenticationLogin());
    m_password->showValue(m_preset->authenticationPassword());
    for (QWidget *widget : std::as_const(m_credentials))
        widget->setVisible(m_preset->authenticate());
}

void StreamingSettingsGroup::revealPassword(bool reveal)
{
    m_password->setEchoMode(reveal ? QLineEdit::Normal : QLineEdit::Password);
    m_reveal->setText(reveal ? tr("Hide") : tr("Show"));
}

} // namespace vantle
